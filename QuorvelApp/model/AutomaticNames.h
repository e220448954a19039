#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Names for clones that have none yet.
namespace quorvel {

/// From the host of a web address, with or without a scheme: percent signs decoded, "www." removed,
/// words capitalised. The host is what RFC 3986 takes for one, or one in another script.
/// std::nullopt if there is none.
[[nodiscard]] std::optional<std::string> nameForWebAddress(std::string_view address);

/// From a path's last component, words capitalised. std::nullopt if there is none, as at the root.
[[nodiscard]] std::optional<std::string> nameForCommand(std::string_view path);

} // namespace quorvel

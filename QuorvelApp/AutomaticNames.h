#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Names for clones that have none yet.
namespace quorvel {

/// From the host of a web address, with or without a scheme: "www." removed, words capitalised.
/// Nothing when the text is no address with a host.
[[nodiscard]] std::optional<std::string> nameForWebAddress(std::string_view address);

/// From a path's last component, words capitalised. Nothing when there is none, as in the root.
[[nodiscard]] std::optional<std::string> nameForCommand(std::string_view path);

/// The first letter of each word in upper case, the rest in lower case. Whatever is no letter,
/// mark, digit or apostrophe separates words.
[[nodiscard]] std::string capitalizingWords(std::string_view text);

} // namespace quorvel

#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

/// Names that are proposed for new clones.
namespace quorvel {

/// Returns `appName` followed by a number in parentheses: " (2)" if `appName` is not in `taken`,
/// without checking the result; otherwise the first from " (2)" on whose name is not in `taken`.
[[nodiscard]] std::string suggestedName(const std::string& appName,
                                        const std::set<std::string>& taken);

/// Returns the first name for another clone like `name` that is not taken: followed by a number in
/// parentheses, from " (2)" on, which replaces one that it ends with.
[[nodiscard]] std::string nextFreeName(const std::string& name,
                                       const std::function<bool(const std::string& name)>& isTaken);

/// Returns the host of a web address, with or without a scheme: percent-encoding decoded, "www."
/// removed, words capitalised. The host is what RFC 3986 allows, or has unencoded letters of other
/// scripts. Returns `std::nullopt` if there is none.
[[nodiscard]] std::optional<std::string> nameForWebAddress(std::string_view address);

/// Returns a path's last component, words capitalised, or `std::nullopt` if there is none, as at
/// the root.
[[nodiscard]] std::optional<std::string> nameForCommand(std::string_view path);

} // namespace quorvel

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvel {

/// The most characters that are displayed of a text: more than the longest path has.
inline constexpr std::size_t longestDisplayed = 4096;

/// Returns `text` on one line, safe for a terminal, and truncated with "…" after `most` characters.
/// Characters that `UnsafeText` finds and bytes that are not UTF-8 are replaced by escapes such as
/// "\n" or "\u{1b}".
[[nodiscard]] std::string terminalText(std::string_view text, std::size_t most = longestDisplayed);

/// Returns `text` without the characters for which `UnsafeText::isControl` is true and without
/// bytes that are not UTF-8, for places that show texts as they are.
[[nodiscard]] std::string withoutControls(std::string_view text);

/// Returns `text` without the characters that `UnsafeText` finds and without bytes that are not
/// UTF-8, and truncated with "…" after `most` characters.
[[nodiscard]] std::string withoutUnsafe(std::string_view text, std::size_t most = longestDisplayed);

/// Returns the same JSON with every character that is unsafe for a terminal escaped. Nothing is
/// truncated.
[[nodiscard]] std::string escapingUnsafe(std::string_view json);

} // namespace quorvel

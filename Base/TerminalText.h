#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvel {

/// No text is shown beyond this many characters: more than the longest path has.
inline constexpr std::size_t longestShown = 4096;

/// `text` on one line, harmless to a terminal, and cut off with "…" after `most` characters: what
/// `HarmfulText` finds and bytes that are not UTF-8 are shown as escapes such as "\n" or "\u{1b}".
[[nodiscard]] std::string terminalText(std::string_view text, std::size_t most = longestShown);

/// The same JSON with every character that is harmful to a terminal escaped. Nothing is cut off.
[[nodiscard]] std::string escapingHarmful(std::string_view json);

} // namespace quorvel

#pragma once

#include <QString>

#include <string_view>

/// Makes texts from files safe to show: plain, and unable to affect the text around them.
namespace quorvel {

/// Longer texts are cut, in UTF-16 units: laying them out would block the window.
inline constexpr qsizetype longestDisplayText = 4096;
inline constexpr qsizetype longestDisplayLine = 500;

/// Returns `text` with what `UnsafeText` finds (bidirectional, control and invisible characters)
/// shown as U+FFFD. Line breaks stay. A text longer than `longestDisplayText` is cut after a whole
/// character and ends with "…".
[[nodiscard]] QString displayText(std::string_view text);

/// Returns `text` made safe in the same way but on one line, for names and other parts of a
/// sentence, cut after `longestDisplayLine`.
[[nodiscard]] QString displayLine(std::string_view text);

/// Returns `text` with a `breakMark` wherever a word that is longer than a line may be broken.
[[nodiscard]] QString breakable(const QString& text);

/// A zero-width space.
inline constexpr QChar breakMark{0x200B};

/// Returns `text` for a tooltip, which would otherwise guess whether it is markup.
[[nodiscard]] QString toolTipText(const QString& text);

} // namespace quorvel

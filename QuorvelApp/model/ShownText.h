#pragma once

#include <QString>

#include <string_view>

/// Texts from files as they may stand on the screen: plain, and unable to reach beyond themselves.
namespace quorvel {

/// More of a text is not shown, in UTF-16 units: laying it out would keep the window from working.
inline constexpr qsizetype longestShownText = 4096;
inline constexpr qsizetype longestShownLine = 500;

/// `text` with what `UnsafeText` finds (what would turn the writing direction, steer or vanish)
/// shown as U+FFFD. Line breaks stay. What is longer than `longestShownText` is cut behind
/// a whole character, and ends with "…".
[[nodiscard]] QString shownText(std::string_view text);

/// The same on one line, for names and whatever stands within a sentence, and cut behind
/// `longestShownLine`.
[[nodiscard]] QString shownLine(std::string_view text);

/// `text` with places at which words that are longer than a line may be broken, which are
/// `breakMark`s.
[[nodiscard]] QString breakable(const QString& text);

/// A space without width.
inline constexpr QChar breakMark{0x200B};

/// `text` for a tooltip, which would else guess whether it is markup.
[[nodiscard]] QString toolTipText(const QString& text);

} // namespace quorvel

#pragma once

#include <QColor>
#include <QPainterPath>
#include <QRectF>

#include <string_view>

/// What a label's words look like, before it is known where they go.
namespace quorvel {

/// One line of text as outlines: y grows downwards, the baseline is at 0.
struct LabelText {
    QPainterPath outlines{}; ///< to be filled by the non-zero winding rule
    QRectF box{};            ///< exactly around the outlines; null when there are none
    double fontSize = 0;     ///< at which the outlines were taken; they scale with it
};

/// `text` laid out in capitals in bold Helvetica, or what stands for it here, with other scripts in
/// whatever font has them. Glyphs without an outline add nothing but their width. Needs the font
/// engine; any thread.
[[nodiscard]] LabelText labelText(std::string_view text);

/// The color that six hexadecimal digits mean; white for any other text. Spaces and tabs around
/// them and one "#" before them are fine, and a sign may stand for the first digit.
[[nodiscard]] QColor labelColor(std::string_view hex);

} // namespace quorvel

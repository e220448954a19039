#pragma once

#include <QColor>
#include <QPainterPath>
#include <QRectF>

#include <string_view>

/// A label laid out as glyph outlines, independent of position.
namespace quorvel {

/// One line of text as outlines: y grows downwards, the baseline is at 0.
struct LabelText {
    QPainterPath outlines{}; ///< to be filled by the non-zero winding rule
    QRectF box{};            ///< the exact bounds of the outlines; null if there are none
    double fontSize = 0;     ///< at which the text was laid out
};

/// Returns `text` laid out in capitals in bold Helvetica or its local substitute, with other
/// scripts in any font that has them. Glyphs without an outline only add their width. Needs the
/// font engine; any thread.
[[nodiscard]] LabelText labelText(std::string_view text);

/// Returns the color of six hexadecimal digits; white for any other text. Accepts spaces and tabs
/// around them, one "#" before them, and a sign in place of the first digit.
[[nodiscard]] QColor labelColor(std::string_view hex);

} // namespace quorvel

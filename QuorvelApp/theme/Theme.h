#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QString>

namespace quorvel {

/// The colors of one appearance, light or dark. Style sheets name them after an at sign:
/// "@accent-pressed" is `accentPressed`.
struct Colors {
    bool dark = false;
    QColor sidebar{}; ///< also the toolbar and the menu bar
    QColor content{}; ///< of details and sheets
    QColor text{};
    QColor secondary{}; ///< text that explains
    QColor tertiary{};  ///< large symbols, placeholders
    QColor accent{};
    QColor accentPressed{};
    QColor onAccent{};
    QColor divider{};
    QColor control{}; ///< buttons
    QColor controlPressed{};
    QColor controlBorder{};
    QColor field{};
    QColor callout{};
    QColor warningFill{};
    QColor warningBorder{};
    QColor running{};
    QColor orange{};
    QColor danger{};
    QColor scrim{}; ///< over the window below a sheet
};

/// Returns the colors of the light appearance.
[[nodiscard]] const Colors& lightColors();
/// Returns the colors of the dark appearance.
[[nodiscard]] const Colors& darkColors();

/// Returns the colors that belong to a palette, by its lightness. Widgets and delegates call
/// this at each painting, so a change of appearance needs nothing else.
[[nodiscard]] const Colors& colorsFor(const QPalette& palette);

/// Returns whether a palette has light text on a dark background.
[[nodiscard]] bool isDark(const QPalette& palette);

/// Returns the palette for controls in those colors.
[[nodiscard]] QPalette paletteFor(const Colors& colors);

/// Whether controls are drawn by the style sheet or by the system's own style.
enum class ControlLook { styled, native };

/// Returns the style sheet in those colors, without rules for controls if their look is native.
[[nodiscard]] QString styleSheetFor(const Colors& colors, ControlLook controls);

/// The distances between widgets and around them, in points.
namespace Spacing {
inline constexpr int hair = 2;
inline constexpr int tight = 4;
inline constexpr int close = 6;
inline constexpr int normal = 8;
inline constexpr int loose = 10;
inline constexpr int block = 12;
inline constexpr int group = 14;
inline constexpr int wide = 16;
inline constexpr int section = 18;
inline constexpr int pane = 20;
} // namespace Spacing

/// The steps of the text's hierarchy.
enum class TextStyle { largeTitle, title, headline, body, medium, callout, caption, captionMedium };

/// Returns the font of a style, sized from the user's own.
[[nodiscard]] QFont fontFor(TextStyle style);

/// Returns the font for paths, identifiers and arguments.
[[nodiscard]] QFont monospacedFont();

} // namespace quorvel

#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QString>

namespace quorvel {

/// The colours of one appearance, light or dark.
struct Colors {
    bool dark = false;
    QColor sidebar{}; ///< also the toolbar and the menu bar
    QColor content{}; ///< behind details and sheets
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

[[nodiscard]] const Colors& lightColors();
[[nodiscard]] const Colors& darkColors();

/// The colours that belong to a palette, by its lightness. Widgets and delegates ask at each
/// painting, so that a change of appearance needs nothing else.
[[nodiscard]] const Colors& colorsFor(const QPalette& palette);

/// Whether a palette is one with light text on dark ground.
[[nodiscard]] bool isDark(const QPalette& palette);

[[nodiscard]] QPalette paletteFor(const Colors& colors);

/// Whose look the controls have: the style sheet's, or that of the system's own style.
enum class ControlLook { ours, native };

/// The style sheet, without a word on controls where their look is native.
[[nodiscard]] QString styleSheetFor(const Colors& colors, ControlLook controls);

/// The steps of the text's hierarchy.
enum class TextStyle { largeTitle, title, headline, body, medium, callout, caption, captionMedium };

/// The font of a step, sized from the user's own.
[[nodiscard]] QFont fontFor(TextStyle style);

/// The font for paths, identifiers and arguments.
[[nodiscard]] QFont monospacedFont();

} // namespace quorvel

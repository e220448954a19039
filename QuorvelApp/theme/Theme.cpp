#include "QuorvelApp/theme/Theme.h"

#include <QApplication>
#include <QFile>
#include <QFontDatabase>

#include <array>
#include <utility>

namespace quorvel {

const Colors& lightColors() {
    static const Colors colors{.dark = false,
                               .sidebar = QColor(0xEC, 0xED, 0xF1),
                               .content = QColor(0xFF, 0xFF, 0xFF),
                               .text = QColor(0x1C, 0x1C, 0x1F),
                               .secondary = QColor(0x66, 0x66, 0x6C),
                               .tertiary = QColor(0x96, 0x96, 0x9C),
                               .accent = QColor(0x2D, 0x6B, 0xED),
                               .accentPressed = QColor(0x22, 0x57, 0xC9),
                               .onAccent = QColor(0xFF, 0xFF, 0xFF),
                               .divider = QColor(0xDC, 0xDC, 0xE0),
                               .control = QColor(0xFF, 0xFF, 0xFF),
                               .controlPressed = QColor(0xEB, 0xEB, 0xEF),
                               .controlBorder = QColor(0xCD, 0xCD, 0xD3),
                               .field = QColor(0xFF, 0xFF, 0xFF),
                               .callout = QColor(0xF5, 0xF5, 0xF8),
                               .warningFill = QColor(0xFF, 0xF6, 0xE5),
                               .warningBorder = QColor(0xF0, 0xC8, 0x7A),
                               .running = QColor(0x30, 0xC0, 0x57),
                               .orange = QColor(0xF5, 0x96, 0x13),
                               .danger = QColor(0xC9, 0x2A, 0x2A),
                               .scrim = QColor(0, 0, 0, 80)};
    return colors;
}

const Colors& darkColors() {
    static const Colors colors{.dark = true,
                               .sidebar = QColor(0x2C, 0x2C, 0x2F),
                               .content = QColor(0x22, 0x22, 0x24),
                               .text = QColor(0xF2, 0xF2, 0xF4),
                               .secondary = QColor(0xA6, 0xA6, 0xAD),
                               .tertiary = QColor(0x7E, 0x7E, 0x86),
                               .accent = QColor(0x3F, 0x80, 0xF6),
                               .accentPressed = QColor(0x33, 0x6B, 0xD6),
                               .onAccent = QColor(0xFF, 0xFF, 0xFF),
                               .divider = QColor(0x3F, 0x3F, 0x43),
                               .control = QColor(0x3A, 0x3A, 0x3E),
                               .controlPressed = QColor(0x48, 0x48, 0x4D),
                               .controlBorder = QColor(0x50, 0x50, 0x55),
                               .field = QColor(0x1B, 0x1B, 0x1D),
                               .callout = QColor(0x2B, 0x2B, 0x2E),
                               .warningFill = QColor(0x3A, 0x2E, 0x18),
                               .warningBorder = QColor(0x74, 0x58, 0x20),
                               .running = QColor(0x32, 0xC7, 0x5B),
                               .orange = QColor(0xF5, 0x9E, 0x1F),
                               .danger = QColor(0xFF, 0x7B, 0x72),
                               .scrim = QColor(0, 0, 0, 120)};
    return colors;
}

bool isDark(const QPalette& palette) {
    // The ground of a styled widget may be transparent; its text tells.
    return palette.color(QPalette::Active, QPalette::WindowText).lightnessF() > 0.5F;
}

const Colors& colorsFor(const QPalette& palette) {
    return isDark(palette) ? darkColors() : lightColors();
}

QPalette paletteFor(const Colors& colors) {
    QPalette palette(colors.control, colors.content);
    for (const auto& [role, color] : std::array<std::pair<QPalette::ColorRole, QColor>, 14>{
             {{QPalette::Window, colors.content},
              {QPalette::WindowText, colors.text},
              {QPalette::Base, colors.field},
              {QPalette::AlternateBase, colors.callout},
              {QPalette::Text, colors.text},
              {QPalette::PlaceholderText, colors.tertiary},
              {QPalette::Button, colors.control},
              {QPalette::ButtonText, colors.text},
              {QPalette::BrightText, colors.danger},
              {QPalette::Highlight, colors.accent},
              {QPalette::HighlightedText, colors.onAccent},
              {QPalette::ToolTipBase, colors.callout},
              {QPalette::ToolTipText, colors.text},
              {QPalette::Mid, colors.divider}}}) {
        palette.setColor(role, color);
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, colors.tertiary);
    }
    return palette;
}

namespace {

QString resourceText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

QString styleSheetFor(const Colors& colors, ControlLook controls) {
    QString sheet = resourceText(QStringLiteral(":/style/pieces.qss"));
    if (controls == ControlLook::ours) {
        sheet.prepend(resourceText(QStringLiteral(":/style/controls.qss")));
    }
    for (const auto& [name, color] : std::array<std::pair<QLatin1String, QColor>, 18>{
             {{QLatin1String("@sidebar"), colors.sidebar},
              {QLatin1String("@content"), colors.content},
              {QLatin1String("@text"), colors.text},
              {QLatin1String("@secondary"), colors.secondary},
              {QLatin1String("@tertiary"), colors.tertiary},
              {QLatin1String("@accent-pressed"), colors.accentPressed},
              {QLatin1String("@accent"), colors.accent},
              {QLatin1String("@on-accent"), colors.onAccent},
              {QLatin1String("@divider"), colors.divider},
              {QLatin1String("@control-pressed"), colors.controlPressed},
              {QLatin1String("@control-border"), colors.controlBorder},
              {QLatin1String("@control"), colors.control},
              {QLatin1String("@field"), colors.field},
              {QLatin1String("@callout"), colors.callout},
              {QLatin1String("@warning-fill"), colors.warningFill},
              {QLatin1String("@warning-border"), colors.warningBorder},
              {QLatin1String("@orange"), colors.orange},
              {QLatin1String("@danger"), colors.danger}}}) {
        sheet.replace(name, color.name());
    }
    return sheet;
}

QFont fontFor(TextStyle style) {
    struct Step {
        double scale;
        QFont::Weight weight;
    };
    const Step step = [style]() -> Step {
        switch (style) {
        case TextStyle::largeTitle:
            return {1.65, QFont::Bold};
        case TextStyle::title:
            return {1.45, QFont::Bold};
        case TextStyle::headline:
            return {1.0, QFont::DemiBold};
        case TextStyle::medium:
            return {1.0, QFont::Medium};
        case TextStyle::callout:
            return {0.97, QFont::Normal};
        case TextStyle::caption:
            return {0.86, QFont::Normal};
        case TextStyle::captionMedium:
            return {0.86, QFont::Medium};
        case TextStyle::body:
            break;
        }
        return {1.0, QFont::Normal};
    }();
    QFont font = QApplication::font();
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * step.scale);
    } else {
        font.setPixelSize(qRound(font.pixelSize() * step.scale));
    }
    font.setWeight(step.weight);
    return font;
}

QFont monospacedFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const QFont base = fontFor(TextStyle::body);
    if (base.pointSizeF() > 0) {
        font.setPointSizeF(base.pointSizeF() * 0.92);
    } else {
        font.setPixelSize(qRound(base.pixelSize() * 0.92));
    }
    return font;
}

} // namespace quorvel

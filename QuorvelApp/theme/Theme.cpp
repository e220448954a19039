#include "QuorvelApp/theme/Theme.h"

#include <QApplication>
#include <QFile>
#include <QFontDatabase>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <utility>

namespace quorvel {

namespace {

struct NamedColor {
    QStringView name; // in style sheets, after an at sign
    QColor Colors::*member;
    QRgb light;
    QRgb dark;
};

// clang-format off
constexpr std::array namedColors{
    NamedColor{u"sidebar", &Colors::sidebar, 0xFFECEDF1, 0xFF2C2C2F},
    NamedColor{u"content", &Colors::content, 0xFFFFFFFF, 0xFF222224},
    NamedColor{u"text", &Colors::text, 0xFF1C1C1F, 0xFFF2F2F4},
    NamedColor{u"secondary", &Colors::secondary, 0xFF66666C, 0xFFA6A6AD},
    NamedColor{u"tertiary", &Colors::tertiary, 0xFF96969C, 0xFF7E7E86},
    NamedColor{u"accent", &Colors::accent, 0xFF2D6BED, 0xFF3F80F6},
    NamedColor{u"accent-pressed", &Colors::accentPressed, 0xFF2257C9, 0xFF336BD6},
    NamedColor{u"on-accent", &Colors::onAccent, 0xFFFFFFFF, 0xFFFFFFFF},
    NamedColor{u"divider", &Colors::divider, 0xFFDCDCE0, 0xFF3F3F43},
    NamedColor{u"control", &Colors::control, 0xFFFFFFFF, 0xFF3A3A3E},
    NamedColor{u"control-pressed", &Colors::controlPressed, 0xFFEBEBEF, 0xFF48484D},
    NamedColor{u"control-border", &Colors::controlBorder, 0xFFCDCDD3, 0xFF505055},
    NamedColor{u"field", &Colors::field, 0xFFFFFFFF, 0xFF1B1B1D},
    NamedColor{u"callout", &Colors::callout, 0xFFF5F5F8, 0xFF2B2B2E},
    NamedColor{u"warning-fill", &Colors::warningFill, 0xFFFFF6E5, 0xFF3A2E18},
    NamedColor{u"warning-border", &Colors::warningBorder, 0xFFF0C87A, 0xFF745820},
    NamedColor{u"running", &Colors::running, 0xFF30C057, 0xFF32C75B},
    NamedColor{u"orange", &Colors::orange, 0xFFF59613, 0xFFF59E1F},
    NamedColor{u"danger", &Colors::danger, 0xFFC92A2A, 0xFFFF7B72},
    NamedColor{u"scrim", &Colors::scrim, 0x50000000, 0x78000000},
};
// clang-format on

Colors makeColors(bool dark) {
    Colors colors{.dark = dark};
    for (const NamedColor& color : namedColors) {
        colors.*color.member = QColor::fromRgba(dark ? color.dark : color.light);
    }
    return colors;
}

QString resourceText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// Matches whole names, since one name may be the beginning of another.
QString withColors(const QString& sheet, const Colors& colors) {
    static const QRegularExpression names(QStringLiteral("@([a-z-]+)"));
    QString result;
    qsizetype end = 0;
    for (const QRegularExpressionMatch& match : names.globalMatch(sheet)) {
        const auto* found =
            std::find_if(namedColors.begin(), namedColors.end(), [&](const NamedColor& color) {
                return color.name == match.capturedView(1);
            });
        result += QStringView(sheet).mid(end, match.capturedStart() - end);
        result += found == namedColors.end() ? match.captured()
                                             : (colors.*found->member).name(QColor::HexRgb);
        end = match.capturedEnd();
    }
    result += QStringView(sheet).mid(end);
    return result;
}

} // namespace

const Colors& lightColors() {
    static const Colors colors = makeColors(false);
    return colors;
}

const Colors& darkColors() {
    static const Colors colors = makeColors(true);
    return colors;
}

bool isDark(const QPalette& palette) {
    // A styled widget's background may be transparent; its text never is.
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

QString styleSheetFor(const Colors& colors, ControlLook controls) {
    QString sheet = resourceText(QStringLiteral(":/style/pieces.qss"));
    if (controls == ControlLook::styled) {
        sheet.prepend(resourceText(QStringLiteral(":/style/controls.qss")));
    }
    return withColors(sheet, colors);
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

#include "LaunchKit/Icons/LabelText.h"

#include "Base/Text.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGlyphRun>
#include <QRawFont>
#include <QString>
#include <QStringList>
#include <QTextLayout>
#include <QTextOption>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>

namespace quorvel {
namespace {

// Large enough that positions, kept in 64ths of a pixel, are exact on the largest icon.
constexpr int layoutFontSize = 256;

QFont fontOf(const QString& family) {
    QFont font(family);
    font.setStyleHint(QFont::SansSerif);
    font.setWeight(QFont::Bold);
    font.setPixelSize(layoutFontSize);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

bool hasKerning(const QFont& font) {
    const QRawFont raw = QRawFont::fromFont(font);
    return !raw.fontTable("GPOS").isEmpty() || !raw.fontTable("kern").isEmpty();
}

bool hasUprightBold(const QString& family) {
    const QStringList styles = QFontDatabase::styles(family);
    return std::any_of(styles.begin(), styles.end(), [&](const QString& style) {
        return QFontDatabase::bold(family, style) && !QFontDatabase::italic(family, style);
    });
}

// Some systems have the same typeface from several foundries, of which older ones lack kerning.
QString labelFamily() {
    QString named = QStringLiteral("Helvetica");
    if (hasKerning(fontOf(named))) {
        return named;
    }
    const QString found = QFontInfo(fontOf(named)).family().section(QStringLiteral(" ["), 0, 0);
    for (const QString& family : QFontDatabase::families()) {
        if (family.startsWith(found + QStringLiteral(" [")) && hasUprightBold(family) &&
            hasKerning(fontOf(family))) {
            return family;
        }
    }
    return named;
}

QFont labelFont() {
    static const QString family = labelFamily();
    return fontOf(family);
}

QString singleLine(std::string_view text) {
    const std::string capitals = Text::upperCased(text);
    QString line = QString::fromUtf8(capitals.data(), static_cast<qsizetype>(capitals.size()));
    std::replace_if(
        line.begin(), line.end(),
        [](QChar character) {
            return character == u'\n' || character == u'\r' || character == QChar::LineSeparator ||
                   character == QChar::ParagraphSeparator;
        },
        QChar(u' '));
    return line;
}

// Bitmap glyphs are not outlines, though Qt would trace their pixels.
bool hasOutlines(const QRawFont& font) {
    return font.fontTable("CBDT").isEmpty() || !font.fontTable("glyf").isEmpty() ||
           !font.fontTable("CFF ").isEmpty();
}

void addOutlines(const QGlyphRun& run, QPainterPath& path) {
    const QRawFont font = run.rawFont();
    if (!hasOutlines(font)) {
        return;
    }
    const auto glyphs = run.glyphIndexes();
    const auto positions = run.positions();
    for (qsizetype index = 0; index < std::min(glyphs.size(), positions.size()); ++index) {
        path.addPath(font.pathForGlyph(glyphs[index]).translated(positions[index]));
    }
}

// Returns the number if the whole text is one in base 16, with an optional sign.
std::optional<std::uint32_t> hexadecimal(std::string_view text) {
    const bool negative = text.starts_with('-');
    text.remove_prefix(negative || text.starts_with('+') ? 1 : 0);
    std::uint32_t number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, 16);
    const bool whole = result.ec == std::errc{} && result.ptr == end;
    return whole ? std::optional(negative ? 0U - number : number) : std::nullopt;
}

} // namespace

LabelText labelText(std::string_view text) {
    const QString words = singleLine(text);
    QTextLayout layout(words, labelFont());
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(words.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    option.setUseDesignMetrics(true);
    layout.setTextOption(option);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    LabelText result;
    result.fontSize = layoutFontSize;
    result.outlines.setFillRule(Qt::WindingFill);
    for (const QGlyphRun& run : layout.glyphRuns()) {
        addOutlines(run, result.outlines);
    }
    result.outlines.translate(0, -line.ascent());
    result.box = result.outlines.boundingRect();
    return result;
}

QColor labelColor(std::string_view hex) {
    constexpr std::size_t digits = 6;
    std::string text = Text::trimmingWhitespace(hex);
    if (text.starts_with('#')) {
        text.erase(0, 1);
    }
    const auto number = text.size() == digits ? hexadecimal(text) : std::nullopt;
    return number ? QColor::fromRgb(*number | 0xFF000000U) : QColor(Qt::white);
}

} // namespace quorvel

#include "LaunchKit/Icons/LabelPainter.h"

#include "LaunchKit/Icons/GaussianBlur.h"

#include <QPainter>
#include <QPainterPath>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace quorvel {
namespace {

// All relative to the icon's side, except the stroke, which is relative to the font size.
constexpr double fontSizePart = 0.24;
constexpr double widestPart = 0.86;
constexpr double marginPart = 0.08;
constexpr double strokePart = 0.18;
constexpr double shadowDropPart = 0.004;
constexpr double shadowBlurPart = 0.012;
constexpr double strokeOpacity = 0.9;
constexpr double shadowOpacity = 0.5;

// A blur of n pixels is a Gaussian with a deviation of n / 2.
constexpr double deviationOfBlur = 0.5;

// Returns the scale of the text's outlines for an icon of that side.
double scaleFor(const LabelText& text, double side) {
    const double scale = fontSizePart * side / text.fontSize;
    const double widest = widestPart * side;
    return text.box.width() * scale > widest ? widest / text.box.width() : scale;
}

// Returns the distance from the icon's top edge to the glyphs'.
double topEdge(IconLabel::Position position, double height, double side) {
    switch (position) {
    case IconLabel::Position::bottom:
        return (1 - marginPart) * side - height;
    case IconLabel::Position::center:
        return (side - height) / 2;
    case IconLabel::Position::top:
        break;
    }
    return marginPart * side;
}

QTransform placement(const LabelText& text, IconLabel::Position position, double side) {
    const double scale = scaleFor(text, side);
    const double left = (side - text.box.width() * scale) / 2;
    const double top = topEdge(position, text.box.height() * scale, side);
    return {scale, 0, 0, scale, left - text.box.left() * scale, top - text.box.top() * scale};
}

// Returns the coverage of the stroked outlines inside `area`, 0 to 255.
QImage strokeCoverage(const QPainterPath& outlines, double width, const QRect& area) {
    QImage coverage(area.size(), QImage::Format_Alpha8);
    coverage.fill(0);
    QPainter painter(&coverage);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-area.topLeft());
    painter.strokePath(outlines, QPen(Qt::black, width, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    return coverage;
}

// Returns black with the opacity of the stroke over its own shadow.
QImage blackLayer(const QImage& stroke, const QImage& shadow) {
    QImage layer(stroke.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < layer.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(layer.scanLine(y));
        const uchar* above = stroke.constScanLine(y);
        const uchar* below = shadow.constScanLine(y);
        for (int x = 0; x < layer.width(); ++x) {
            const double opacity = strokeOpacity * above[x] / 255;
            const double dimmed = shadowOpacity * strokeOpacity * below[x] / 255;
            const double both = 1 - (1 - opacity) * (1 - dimmed);
            line[x] = static_cast<QRgb>(std::lround(both * 255)) << 24U;
        }
    }
    return layer;
}

} // namespace

void drawLabel(QImage& icon, const LabelText& text, const QColor& color,
               IconLabel::Position position) {
    if (text.box.width() <= 0 || text.box.height() <= 0) {
        return;
    }
    const double side = icon.width();
    const QTransform place = placement(text, position, side);
    const QPainterPath outlines = place.map(text.outlines);
    const double stroke = strokePart * text.fontSize * place.m11();
    const double deviation = shadowBlurPart * side * deviationOfBlur;
    const double drop = shadowDropPart * side;
    const double reach = stroke / 2 + 4 * deviation + drop + 1;
    const QRect area = place.mapRect(text.box)
                           .adjusted(-reach, -reach, reach, reach)
                           .toAlignedRect()
                           .intersected(icon.rect());
    const QImage coverage = strokeCoverage(outlines, stroke, area);
    const QImage shadow = gaussianBlurred(coverage, deviation, drop);
    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawImage(area.topLeft(), blackLayer(coverage, shadow));
    painter.fillPath(outlines, color);
}

} // namespace quorvel

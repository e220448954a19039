#include "tests/support/IconArtwork.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

namespace quorvel::testing {
namespace {

// A canvas of 100 by 100 units.
class Canvas {
public:
    explicit Canvas(int side) : image_(side, side, QImage::Format_ARGB32_Premultiplied) {
        image_.fill(Qt::transparent);
    }

    template<typename Draw>
    QImage drawn(Draw draw) {
        QPainter painter(&image_);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(image_.width() / 100.0, image_.height() / 100.0);
        painter.setPen(Qt::NoPen);
        draw(painter);
        painter.end();
        return image_.convertToFormat(QImage::Format_ARGB32);
    }

private:
    QImage image_;
};

QLinearGradient downwards(QColor top, QColor bottom) {
    QLinearGradient gradient(0, 8, 0, 92);
    gradient.setColorAt(0, top);
    gradient.setColorAt(1, bottom);
    return gradient;
}

// The soft shadow below icons with a rounded square.
void drawPlate(QPainter& painter, const QBrush& brush) {
    painter.setBrush(QColor(0, 0, 0, 2));
    for (int line = 25; line > 0; --line) {
        const double step = line * 0.2;
        painter.drawRoundedRect(QRectF(10, 11.5, 80, 80).adjusted(-step, -step, step, step),
                                18 + step, 18 + step);
    }
    painter.setBrush(brush);
    painter.drawRoundedRect(QRectF(10, 10, 80, 80), 18, 18);
}

QPainterPath bubble() {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    path.addRoundedRect(QRectF(24, 27, 52, 37), 18, 18);
    QPainterPath tail;
    tail.moveTo(34, 58);
    tail.quadTo(35, 70, 27, 74);
    tail.quadTo(43, 74, 50, 62);
    tail.closeSubpath();
    return path.united(tail);
}

} // namespace

QImage chatIcon(int side) {
    return Canvas(side).drawn([](QPainter& painter) {
        drawPlate(painter, downwards(QColor(0x6A, 0x8B, 0xFF), QColor(0x45, 0x2B, 0xD9)));
        painter.setBrush(Qt::white);
        painter.drawPath(bubble());
        painter.setBrush(QColor(0x5A, 0x5C, 0xEE));
        for (const double x : {37.0, 50.0, 63.0}) {
            painter.drawEllipse(QPointF(x, 45.5), 4, 4);
        }
    });
}

QImage paperIcon(int side) {
    return Canvas(side).drawn([](QPainter& painter) {
        drawPlate(painter, downwards(QColor(0xFF, 0xFF, 0xFF), QColor(0xE9, 0xEA, 0xEE)));
        QPainterPath plate;
        plate.addRoundedRect(QRectF(10, 10, 80, 80), 18, 18);
        painter.setClipPath(plate);
        painter.fillRect(QRectF(10, 10, 80, 17),
                         downwards(QColor(0xFF, 0xC8, 0x3D), QColor(0xFF, 0xA0, 0x20)));
        for (int y = 38; y < 88; y += 10) {
            painter.fillRect(QRectF(10, y, 80, 0.8), QColor(0xC3, 0xCB, 0xD8));
        }
        painter.fillRect(QRectF(24, 27, 0.8, 63), QColor(0xF0, 0x8A, 0x8A));
    });
}

QImage planetIcon(int side) {
    return Canvas(side).drawn([](QPainter& painter) {
        QRadialGradient sphere(QPointF(38, 34), 62);
        sphere.setColorAt(0, QColor(0x5E, 0xF0, 0xC9));
        sphere.setColorAt(0.5, QColor(0x14, 0x7D, 0x91));
        sphere.setColorAt(1, QColor(0x0B, 0x1D, 0x3A));
        painter.setBrush(sphere);
        painter.drawEllipse(QPointF(50, 50), 34, 34);
        painter.translate(50, 50);
        painter.rotate(-24);
        QPainterPath ring;
        ring.addEllipse(QPointF(0, 0), 47, 14);
        ring.addEllipse(QPointF(0, -1), 39, 9);
        QPainterPath behind;
        behind.addRect(QRectF(-30, -30, 60, 30));
        painter.fillPath(ring.subtracted(behind), QColor(0xFF, 0xD9, 0x9A));
    });
}

} // namespace quorvel::testing

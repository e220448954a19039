#pragma once

#include <QPainter>
#include <QPixmap>

namespace quorvel {

/// Draws a pixmap that was made for `rect` and the painter's pixel ratio, pixel for pixel. At a
/// ratio such as 1.5, every other rectangle begins within a pixel, which would blur the picture.
inline void drawCrisp(QPainter& painter, const QRect& rect, const QPixmap& pixmap) {
    const QTransform toDevice = painter.deviceTransform();
    const QPointF inPixels = toDevice.map(QPointF(rect.topLeft()));
    const QPointF place = toDevice.inverted().map(QPointF(inPixels.toPoint()));
    painter.drawPixmap(QRectF(place, QSizeF(rect.size())), pixmap, QRectF(pixmap.rect()));
}

} // namespace quorvel

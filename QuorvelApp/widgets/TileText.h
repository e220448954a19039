#pragma once

#include <QRect>
#include <QString>
#include <QStringList>

class QPainter;

/// A name in at most two centred lines.
namespace quorvel::TileText {

inline constexpr int maximumLines = 2;

/// The lines for that width; the last one ends with an ellipsis where the name is longer.
[[nodiscard]] QStringList lines(const QString& name, int width);

[[nodiscard]] bool isElided(const QString& name, int width);

/// Draws the lines from the top of `rect`, with the painter's pen.
void paint(QPainter* painter, const QRect& rect, const QString& name);

} // namespace quorvel::TileText

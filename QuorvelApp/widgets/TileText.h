#pragma once

#include <QRect>
#include <QString>
#include <QStringList>

class QPainter;

/// A name in at most two centered lines.
namespace quorvel::TileText {

inline constexpr int maximumLines = 2;

/// Returns the lines for a width in points; the last one ends with an ellipsis if the name is too
/// long.
[[nodiscard]] QStringList lines(const QString& name, int width);

/// Returns whether the lines for that width leave out a part of the name.
[[nodiscard]] bool isElided(const QString& name, int width);

/// Draws the lines from the top of `rect`, with the painter's pen.
void paint(QPainter* painter, const QRect& rect, const QString& name);

} // namespace quorvel::TileText

#pragma once

#include "LaunchKit/IconLabel.h"
#include "LaunchKit/Icons/LabelText.h"

#include <QColor>
#include <QImage>

namespace quorvel {

/// Draws `text` onto a square `icon` (premultiplied, 32 bits) as outlined lettering with a soft
/// shadow, every measure in proportion to the icon's side. Draws nothing when `text` has no
/// outlines. Several threads may draw the same text at once.
void drawLabel(QImage& icon, const LabelText& text, const QColor& color,
               IconLabel::Position position);

} // namespace quorvel

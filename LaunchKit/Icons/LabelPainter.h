#pragma once

#include "LaunchKit/IconLabel.h"
#include "LaunchKit/Icons/LabelText.h"

#include <QColor>
#include <QImage>

namespace quorvel {

/// Draws `text` onto a square `icon` (premultiplied, 32 bits) as outlined lettering with a soft
/// shadow, all measures in proportion to the icon's side. Draws nothing if `text` has no
/// outlines. Several threads may draw the same text at once.
void drawLabel(QImage& icon, const LabelText& text, const QColor& color,
               IconLabel::Position position);

} // namespace quorvel

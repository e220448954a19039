#include "QuorvelApp/widgets/StatusDot.h"

#include "QuorvelApp/theme/Theme.h"

#include <QPainter>

namespace quorvel {

StatusDot::StatusDot(QWidget* parent) : QWidget(parent) {
    setFixedSize(diameter, diameter);
}

void StatusDot::setRunning(bool running) {
    running_ = running;
    update();
}

void StatusDot::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsFor(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(running_ ? colors.running : colors.secondary);
    painter.drawEllipse(rect());
}

} // namespace quorvel

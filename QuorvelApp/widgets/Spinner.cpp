#include "QuorvelApp/widgets/Spinner.h"

#include <QPainter>
#include <QTimerEvent>

#include <utility>

namespace quorvel {

Spinner::Spinner(int size, Ink ink, QWidget* parent) : QWidget(parent), ink_(ink) {
    setFixedSize(size, size);
    setAccessibleName(tr("In progress"));
}

void Spinner::showEvent(QShowEvent*) {
    timer_ = timer_ == 0 ? startTimer(80) : timer_;
}

void Spinner::hideEvent(QHideEvent*) {
    killTimer(std::exchange(timer_, 0));
}

void Spinner::timerEvent(QTimerEvent*) {
    step_ = (step_ + 1) % 12;
    update();
}

void Spinner::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(width() / 2.0, height() / 2.0);
    const double radius = width() / 2.0;
    QColor color = inkColor(ink_, colorsFor(palette()));
    for (int spoke = 0; spoke < 12; ++spoke) {
        color.setAlphaF(0.15F + 0.85F * static_cast<float>((spoke + 12 - step_) % 12) / 11.0F);
        painter.setPen(QPen(color, radius * 0.17, Qt::SolidLine, Qt::RoundCap));
        painter.save();
        painter.rotate(-30.0 * spoke);
        painter.drawLine(QPointF(0, -radius * 0.5), QPointF(0, -radius * 0.88));
        painter.restore();
    }
}

} // namespace quorvel

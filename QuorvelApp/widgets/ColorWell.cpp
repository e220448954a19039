#include "QuorvelApp/widgets/ColorWell.h"

#include "QuorvelApp/theme/Theme.h"

#include <QColorDialog>
#include <QPainter>

namespace quorvel {

ColorWell::ColorWell(QWidget* parent) : QPushButton(parent) {
    setAutoDefault(true);
    setFixedSize(sizeHint());
    setAccessibleName(tr("Badge color"));
    connect(this, &QPushButton::clicked, this, &ColorWell::choose);
}

void ColorWell::setColor(const QColor& color) {
    color_ = color;
    setAccessibleDescription(color.name());
    update();
}

void ColorWell::choose() {
    auto* dialog = new QColorDialog(color_, window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QColorDialog::colorSelected, this, &ColorWell::colorChosen);
    dialog->open();
}

void ColorWell::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsFor(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(hasFocus() ? colors.accent : colors.controlBorder);
    painter.setBrush(colors.control);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
    painter.setPen(colors.controlBorder);
    painter.setBrush(color_);
    painter.drawRoundedRect(QRectF(rect()).adjusted(4.5, 4.5, -4.5, -4.5), 3, 3);
}

} // namespace quorvel

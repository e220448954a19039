#include "QuorvelApp/widgets/PaneComboBox.h"

#include <QStyledItemDelegate>
#include <QWheelEvent>

namespace quorvel {

PaneComboBox::PaneComboBox(QWidget* parent) : QComboBox(parent) {
    setItemDelegate(new QStyledItemDelegate(this)); // so that the style sheet applies
}

void PaneComboBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace quorvel

#include "QuorvelApp/widgets/PaneComboBox.h"

#include <QWheelEvent>

namespace quorvel {

void PaneComboBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace quorvel

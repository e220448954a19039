#include "QuorvelApp/widgets/WrappingCheckBox.h"

#include "QuorvelApp/widgets/Labels.h"

#include <QEvent>
#include <QHBoxLayout>

namespace quorvel {

WrappingCheckBox::WrappingCheckBox(const QString& label)
    : box_(new QCheckBox),
      label_(makeWrappingLabel(label, TextStyle::callout)) {
    box_->setAccessibleName(label);
    label_->installEventFilter(this);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(7);
    row->addWidget(box_, 0, Qt::AlignTop);
    row->addWidget(label_, 1);
}

bool WrappingCheckBox::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease) {
        box_->click();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace quorvel

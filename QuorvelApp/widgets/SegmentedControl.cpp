#include "QuorvelApp/widgets/SegmentedControl.h"

#include "QuorvelApp/Components.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QKeyEvent>

namespace quorvel {

using namespace Qt::StringLiterals;

SegmentedControl::SegmentedControl(const QString& accessibleName, const QStringList& segments,
                                   QWidget* parent)
    : QWidget(parent),
      buttons_(new QButtonGroup(this)) {
    setObjectName(u"segments"_s);
    setAttribute(Qt::WA_StyledBackground);
    setAccessibleName(accessibleName);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Spacing::hair, Spacing::hair, Spacing::hair, Spacing::hair);
    row->setSpacing(Spacing::hair);
    for (const QString& text : segments) {
        QPushButton* segment = makeButton(withoutMnemonics(text), ButtonLook::standard);
        segment->setCheckable(true);
        segment->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        segment->installEventFilter(this);
        buttons_->addButton(segment, static_cast<int>(buttons_->buttons().size()));
        row->addWidget(segment, 1);
    }
    buttons_->button(0)->setChecked(true);
    connect(buttons_, &QButtonGroup::idToggled, this, [this](int index, bool checked) {
        if (checked) {
            fixFocus();
            Q_EMIT chosen(index);
        }
    });
    fixFocus();
}

// Tab stops only at the selected segment; arrows go to the others.
void SegmentedControl::fixFocus() {
    for (QAbstractButton* segment : buttons_->buttons()) {
        segment->setFocusPolicy(segment->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

bool SegmentedControl::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QWidget::eventFilter(watched, event);
    }
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool sideways = key == Qt::Key_Left || key == Qt::Key_Right;
    if (!sideways && key != Qt::Key_Up && key != Qt::Key_Down) {
        return QWidget::eventFilter(watched, event);
    }
    const bool forward =
        key == Qt::Key_Down ||
        key == (layoutDirection() == Qt::RightToLeft ? Qt::Key_Left : Qt::Key_Right);
    QAbstractButton* next = buttons_->button(buttons_->checkedId() + (forward ? 1 : -1));
    if (next != nullptr) {
        next->setChecked(true);
        next->setFocus(Qt::TabFocusReason);
    }
    return true;
}

} // namespace quorvel

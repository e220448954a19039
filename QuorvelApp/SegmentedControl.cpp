#include "QuorvelApp/SegmentedControl.h"

#include "QuorvelApp/Components.h"

#include <QButtonGroup>
#include <QHBoxLayout>

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
    row->setContentsMargins(2, 2, 2, 2);
    row->setSpacing(2);
    for (const QString& text : segments) {
        QPushButton* segment = makeButton(withoutMnemonics(text), ButtonLook::standard);
        segment->setCheckable(true);
        segment->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        buttons_->addButton(segment, static_cast<int>(buttons_->buttons().size()));
        row->addWidget(segment, 1);
    }
    buttons_->button(0)->setChecked(true);
    connect(buttons_, &QButtonGroup::idToggled, this, [this](int index, bool checked) {
        if (checked) {
            Q_EMIT chosen(index);
        }
    });
}

} // namespace quorvel

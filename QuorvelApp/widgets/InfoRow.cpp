#include "QuorvelApp/widgets/InfoRow.h"

#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/model/QtText.h"
#include "QuorvelApp/widgets/CopyableLabel.h"
#include "QuorvelApp/widgets/Labels.h"

#include <QHBoxLayout>

namespace quorvel {

InfoRow::InfoRow(const Fact& fact)
    : label_(makeLabel(qtText(fact.label), TextStyle::body, Ink::secondary)),
      value_(new WrappingText(TextStyle::body)) {
    label_->setFixedWidth(labelWidth);
    label_->setBuddy(value_);
    if (fact.monospaced) {
        value_->setFont(monospacedFont());
    }
    value_->setFullText(displayText(fact.value()));
    value_->setAccessibleName(tr("%1: %2").arg(qtText(fact.label), value_->fullText()));
    value_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    value_->setFocusPolicy(Qt::StrongFocus); // so that it can be copied without a mouse
    value_->setMinimumWidth(0);
    value_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, Spacing::close, 0, Spacing::close);
    layout->setSpacing(Spacing::group);
    layout->addWidget(label_, 0, Qt::AlignTop);
    layout->addWidget(value_, 1, Qt::AlignTop);
}

QString InfoRow::label() const {
    return label_->text();
}

QString InfoRow::value() const {
    return value_->fullText();
}

} // namespace quorvel

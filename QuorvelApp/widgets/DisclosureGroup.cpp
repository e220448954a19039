#include "QuorvelApp/widgets/DisclosureGroup.h"

#include "QuorvelApp/Components.h"

#include <QVBoxLayout>

namespace quorvel {

using namespace Qt::StringLiterals;

DisclosureGroup::DisclosureGroup(const QString& title, QWidget* parent)
    : QWidget(parent),
      title_(new QPushButton(title)) {
    title_->setProperty("look", u"disclosure"_s);
    title_->setAutoDefault(true);
    title_->setCheckable(true);
    title_->setFont(fontFor(TextStyle::medium));
    title_->setIconSize({12, 12});
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Spacing::normal);
    column->addWidget(title_, 0, Qt::AlignLeft);
    connect(title_, &QPushButton::toggled, this, [this](bool expanded) {
        show(expanded);
        Q_EMIT toggled(expanded);
    });
    show(false);
}

void DisclosureGroup::setContent(QWidget* content) {
    content_ = content;
    content_->setVisible(title_->isChecked());
    layout()->addWidget(content_);
}

void DisclosureGroup::show(bool expanded) {
    title_->setIcon(symbolIcon(expanded ? u"chevron.down"_s : u"chevron.right"_s, Ink::text,
                               !expanded && layoutDirection() == Qt::RightToLeft));
    title_->setAccessibleDescription(expanded ? tr("expanded") : tr("collapsed"));
    if (content_ != nullptr) {
        content_->setVisible(expanded);
    }
}

} // namespace quorvel

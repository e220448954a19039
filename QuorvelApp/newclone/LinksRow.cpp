#include "QuorvelApp/newclone/LinksRow.h"

#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/model/QtText.h"
#include "QuorvelApp/widgets/PaneComboBox.h"

#include <QListView>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>

namespace quorvel {

LinksRow::LinksRow(NewCloneSession& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      choices_(new PaneComboBox(this)) {
    choices_->setAccessibleName(tr("Links"));
    choices_->setItemDelegate(new QStyledItemDelegate(choices_)); // so that the style sheet applies
    if (auto* list = qobject_cast<QListView*>(choices_->view())) {
        list->setUniformItemSizes(true); // or each clone is measured whenever the sheet changes
    }
    choices_->addItem(tr("The default browser"), QString());
    choices_->addItem(tr("This clone"), qtText(linksInside));
    for (const InstanceRecord& clone : session_.model().clones()) {
        if (clone.config.kind == ShortcutKind::app) {
            choices_->addItem(displayLine(clone.config.displayName),
                              qtText(clone.bundleURL.string()));
        }
    }
    connect(choices_, &QComboBox::currentIndexChanged, this, [this](int index) {
        const std::string links = choices_->itemData(index).toString().toStdString();
        session_.edit([&](NewCloneForm& form) {
            form.links = links.empty() ? std::nullopt : std::optional(links);
        });
    });
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(choices_);
    setFocusProxy(choices_);
    connect(&session_, &NewCloneSession::changed, this, &LinksRow::refresh);
    refresh();
}

void LinksRow::refresh() {
    const QSignalBlocker quiet(choices_);
    const int index = choices_->findData(qtText(session_.form().links.value_or("")));
    choices_->setCurrentIndex(std::max(index, 0));
}

} // namespace quorvel

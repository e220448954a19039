#include "QuorvelApp/newclone/LinksRow.h"

#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/model/QtText.h"
#include "QuorvelApp/widgets/PaneComboBox.h"

#include <QListView>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace quorvel {

LinksRow::LinksRow(NewCloneSession& session, QWidget* parent)
    : QWidget(parent),
      session_(session),
      choices_(new PaneComboBox(this)) {
    choices_->setAccessibleName(tr("Links"));
    if (auto* list = qobject_cast<QListView*>(choices_->view())) {
        list->setUniformItemSizes(true); // or each clone is measured whenever the sheet changes
    }
    choices_->addItem(tr("The default browser"), QString());
    choices_->addItem(tr("This clone"), qtText(linksInside));
    addClones();
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

// An edited clone may name another one by its identifier, or one that is gone.
void LinksRow::addClones() {
    const NewCloneForm& form = session_.form();
    const std::string links = form.links.value_or("");
    for (const InstanceRecord& clone : session_.model().clones()) {
        const bool isEdited = form.edited && form.edited->wrapper == clone.bundleURL;
        if (clone.config.kind == ShortcutKind::app && !isEdited) {
            choices_->addItem(
                displayLine(clone.config.displayName),
                qtText(clone.config.bundleId == links ? links : clone.bundleURL.string()));
        }
    }
    if (links != linksDefault && choices_->findData(qtText(links)) < 0) {
        choices_->addItem(displayLine(links), qtText(links));
    }
}

void LinksRow::refresh() {
    const QSignalBlocker quiet(choices_);
    const int index = choices_->findData(qtText(session_.form().links.value_or("")));
    choices_->setCurrentIndex(std::max(index, 0));
}

} // namespace quorvel

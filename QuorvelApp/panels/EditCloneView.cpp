#include "QuorvelApp/panels/EditCloneView.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/newclone/SheetPanes.h"
#include "QuorvelApp/widgets/CopyableLabel.h"
#include "QuorvelApp/widgets/SheetFooter.h"

#include <QLineEdit>
#include <QVBoxLayout>

#include <utility>

namespace quorvel {
namespace {

bool isEditable(const QWidget* widget) {
    const auto* field = qobject_cast<const QLineEdit*>(widget);
    return (field != nullptr && !field->isReadOnly()) ||
           qobject_cast<const QComboBox*>(widget) != nullptr;
}

} // namespace

EditCloneView::EditCloneView(AppModel& model, IconLoader& icons, FilePanels panels,
                             EditedClone clone)
    : session_(model, std::move(panels), std::move(clone)) {
    auto* footer = new SheetFooter(tr("Save"), tr("Saving…"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(1, 1, 1, 1);
    column->setSpacing(0);
    column->addWidget(makeHeader());
    column->addWidget(makeDivider(Qt::Horizontal));
    column->addWidget(new SheetPanes(session_, icons, this), 1);
    column->addWidget(makeDivider(Qt::Horizontal));
    column->addWidget(footer);
    connect(footer, &SheetFooter::cancelled, this, &EditCloneView::reject);
    connect(footer, &SheetFooter::confirmed, &session_, &EditCloneSession::save);
    connect(&session_, &EditCloneSession::saved, this, &QDialog::accept);
    const auto refresh = [this, footer] {
        footer->setState(session_.canSave(), session_.form().creating);
        footer->setCancellable(!session_.form().creating);
    };
    connect(&session_, &NewCloneSession::changed, footer, refresh);
    refresh();
}

QWidget* EditCloneView::makeHeader() {
    const QString title =
        tr("Edit “%1”").arg(displayLine(session_.clone().settings.config.displayName));
    setWindowTitle(title);
    setAccessibleName(title);
    auto* header = new QWidget;
    auto* heading = new ElidedLabel(TextStyle::title, Ink::text);
    heading->setFullText(title);
    heading->setFocusPolicy(Qt::NoFocus);
    auto* column = new QVBoxLayout(header);
    column->setContentsMargins(20, 16, 20, 16);
    column->setSpacing(3);
    column->addWidget(heading);
    column->addWidget(makeLabel(tr("Its data, its accounts and what it was allowed to do stay."),
                                TextStyle::callout, Ink::secondary));
    return header;
}

void EditCloneView::reject() {
    if (!session_.form().creating) {
        QDialog::reject();
    }
}

void EditCloneView::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    for (QWidget* widget = nextInFocusChain(); widget != this;
         widget = widget->nextInFocusChain()) {
        if (isAncestorOf(widget) && widget->isVisibleTo(this) && isEditable(widget)) {
            widget->setFocus();
            return;
        }
    }
}

} // namespace quorvel

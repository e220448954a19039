#include "QuorvelApp/NewCloneView.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/newclone/KindLook.h"
#include "QuorvelApp/newclone/SearchField.h"
#include "QuorvelApp/newclone/SheetPanes.h"
#include "QuorvelApp/widgets/SegmentedControl.h"
#include "QuorvelApp/widgets/SheetFooter.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quorvel {

NewCloneView::NewCloneView(AppModel& model, IconLoader& icons, FilePanels panels)
    : session_(model, std::move(panels)) {
    setWindowTitle(tr("New Shortcut"));
    setAccessibleName(tr("New Shortcut"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(1, 1, 1, 1);
    column->setSpacing(0);
    column->addWidget(makeHeader());
    column->addWidget(makeDivider(Qt::Horizontal));
    column->addWidget(new SheetPanes(session_, icons, this), 1);
    column->addWidget(makeDivider(Qt::Horizontal));
    footer_ = new SheetFooter(tr("Create Shortcut"), tr("Creating…"));
    column->addWidget(footer_);
    connect(footer_, &SheetFooter::cancelled, this, &QDialog::reject);
    connect(footer_, &SheetFooter::confirmed, &session_, &NewCloneSession::create);
    connect(&session_, &NewCloneSession::changed, this, &NewCloneView::refresh);
    connect(&session_, &NewCloneSession::created, this, &QDialog::accept);
    refresh();
    model.loadCatalog();
}

QWidget* NewCloneView::makeHeader() {
    auto* header = new QWidget;
    auto* titles = new QVBoxLayout;
    titles->setSpacing(3);
    titles->addWidget(makeLabel(tr("New Shortcut"), TextStyle::title));
    titles->addWidget(makeLabel(tr("Run an isolated app, a web app, a file, or a command."),
                                TextStyle::callout, Ink::secondary));
    searchField_ = new SearchField(session_);
    auto* row = new QHBoxLayout;
    row->addLayout(titles);
    row->addStretch();
    row->addWidget(searchField_);
    QStringList labels;
    for (const ShortcutKind kind : allCases<ShortcutKind>()) {
        labels.append(KindLook::of(kind).label);
    }
    auto* kinds = new SegmentedControl(tr("Kind"), labels);
    connect(kinds, &SegmentedControl::chosen, this, [this](int index) {
        const ShortcutKind kind = allCases<ShortcutKind>().at(static_cast<std::size_t>(index));
        session_.edit([&](NewCloneForm& form) { form.shortcutType = kind; });
    });
    auto* column = new QVBoxLayout(header);
    column->setContentsMargins(20, 16, 20, 16);
    column->setSpacing(14);
    column->addLayout(row);
    column->addWidget(kinds);
    return header;
}

void NewCloneView::refresh() {
    const NewCloneForm& form = session_.form();
    searchField_->setVisible(form.shortcutType == ShortcutKind::app);
    footer_->setState(form.canCreate(), form.creating);
}

} // namespace quorvel

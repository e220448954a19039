#include "QuorvelApp/NewCloneView.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/newclone/ConfigurationPane.h"
#include "QuorvelApp/newclone/TargetPane.h"
#include "QuorvelApp/widgets/SearchField.h"
#include "QuorvelApp/widgets/SegmentedControl.h"

#include <QHBoxLayout>
#include <QStyle>
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
    column->addWidget(makePanes(icons), 1);
    column->addWidget(makeDivider(Qt::Horizontal));
    column->addWidget(makeFooter());
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
    auto* kinds = new SegmentedControl(
        tr("Kind"), {tr("App"), tr("Web App"), tr("File / Folder"), tr("Command")});
    connect(kinds, &SegmentedControl::chosen, this, [this](int index) {
        session_.edit(
            [&](NewCloneForm& form) { form.shortcutType = static_cast<ShortcutKind>(index); });
    });
    auto* column = new QVBoxLayout(header);
    column->setContentsMargins(20, 16, 20, 16);
    column->setSpacing(14);
    column->addLayout(row);
    column->addWidget(kinds);
    return header;
}

QWidget* NewCloneView::makePanes(IconLoader& icons) {
    auto* panes = new QWidget(this);
    auto* row = new QHBoxLayout(panes);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(new TargetPane(session_, icons, panes), 1);
    row->addWidget(makeDivider(Qt::Vertical));
    row->addWidget(new ConfigurationPane(session_, icons, panes));
    return panes;
}

QWidget* NewCloneView::makeFooter() {
    auto* footer = new QWidget;
    auto* cancel = makeButton(tr("Cancel"), ButtonLook::standard);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    create_ = makeButton({}, ButtonLook::prominent);
    makeDefault(create_);
    connect(create_, &QPushButton::clicked, &session_, &NewCloneSession::create);
    create_->setText(tr("Create Shortcut"));
    create_->setFixedSize(create_->sizeHint()); // for either of its texts
    creating_ = new Spinner(14, Ink::secondary, create_);
    auto* row = new QHBoxLayout(footer);
    row->setContentsMargins(20, 14, 20, 14);
    row->setSpacing(8);
    row->addStretch();
    row->addWidget(cancel);
    row->addWidget(create_);
    return footer;
}

void NewCloneView::refresh() {
    const NewCloneForm& form = session_.form();
    searchField_->setVisible(form.shortcutType == ShortcutKind::app);
    create_->setText(form.creating ? tr("Creating…") : tr("Create Shortcut"));
    create_->setEnabled(form.canCreate());
    creating_->setVisible(form.creating);
    placeSpinner();
}

// Places it beside the text, which is centred in the button.
void NewCloneView::placeSpinner() {
    const QRect all = create_->rect();
    const int text = create_->fontMetrics().horizontalAdvance(create_->text());
    const int left = (all.width() - text) / 2 - creating_->width() - 6;
    const QRect place(QPoint(left, (all.height() - creating_->height()) / 2), creating_->size());
    creating_->move(QStyle::visualRect(layoutDirection(), all, place).topLeft());
}

} // namespace quorvel

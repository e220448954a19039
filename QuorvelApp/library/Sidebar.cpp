#include "QuorvelApp/library/Sidebar.h"

#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/Components.h"
#include "QuorvelApp/library/CloneCommands.h"
#include "QuorvelApp/library/CloneList.h"
#include "QuorvelApp/library/CloneRow.h"

#include <QMenu>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace quorvel {

using namespace Qt::StringLiterals;

Sidebar::Sidebar(AppModel& model, IconLoader& icons, CloneCommands& commands, QWidget* parent)
    : QWidget(parent),
      model_(model),
      states_(new QStackedLayout(this)),
      menu_(new QMenu(this)) {
    setObjectName(u"sidebar"_s);
    setAttribute(Qt::WA_StyledBackground);
    setMinimumWidth(minimumColumnWidth);
    states_->addWidget(makeEmptyState());
    states_->addWidget(makeList());
    connectList(icons, commands);
    connect(&model_, &AppModel::clonesChanged, this, &Sidebar::updateRows);
    connect(&model_, &AppModel::runningBundleIdsChanged, this,
            [this] { rows_.setRunning(model_.runningBundleIds()); });
    updateRows();
}

void Sidebar::connectList(IconLoader& icons, CloneCommands& commands) {
    auto* row = new CloneRow(icons, list_);
    list_->setItemDelegate(row);
    list_->addAction(&commands.deletion());
    commands.addTo(*menu_);
    connect(&icons, &IconLoader::loaded, list_->viewport(),
            [this] { list_->viewport()->update(); });
    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &Sidebar::rowSelected);
    connect(list_, &CloneList::openRequested, &commands.opening(), &QAction::trigger);
    connect(list_, &CloneList::menuRequested, menu_, [this](QPoint place) { menu_->popup(place); });
    connect(list_, &CloneList::editingChanged, this, &Sidebar::editingChanged);
    connect(row, &CloneRow::nameEntered, this,
            [this](const QString& id, const QString& name) { takeName(id.toStdString(), name); });
}

QWidget* Sidebar::makeEmptyState() {
    auto* page = new QWidget(this);
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(Spacing::wide, Spacing::wide, Spacing::wide, Spacing::wide);
    column->setSpacing(Spacing::loose);
    column->addStretch();
    column->addWidget(new SymbolView(u"square.on.square.dashed"_s, Ink::secondary, 42), 0,
                      Qt::AlignHCenter);
    column->addWidget(makeLabel(tr("No clones yet"), TextStyle::headline), 0, Qt::AlignHCenter);
    QLabel* text = makeLabel(tr("Create an isolated copy of any app to\nrun two accounts side by "
                                "side."),
                             TextStyle::body, Ink::secondary);
    text->setAlignment(Qt::AlignCenter);
    column->addWidget(text, 0, Qt::AlignHCenter);
    QPushButton* button = makeButton(tr("New Clone"), ButtonLook::prominent);
    connect(button, &QPushButton::clicked, this, &Sidebar::newCloneRequested);
    column->addSpacing(Spacing::tight);
    column->addWidget(button, 0, Qt::AlignHCenter);
    column->addStretch();
    return page;
}

QWidget* Sidebar::makeList() {
    auto* page = new QWidget(this);
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(0, Spacing::group, 0, 0);
    column->setSpacing(Spacing::close);
    QLabel* heading = makeLabel(tr("Clones"), TextStyle::captionMedium, Ink::secondary);
    heading->setContentsMargins(Spacing::section, 0, Spacing::section, 0);
    list_ = new CloneList;
    list_->setObjectName(u"clones"_s);
    list_->setAccessibleName(tr("Clones"));
    list_->setModel(&rows_);
    list_->setUniformItemSizes(true);
    list_->setMouseTracking(true);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    heading->setBuddy(list_);
    column->addWidget(heading);
    column->addWidget(list_, 1);
    return page;
}

QSize Sidebar::sizeHint() const {
    return {idealColumnWidth, 480};
}

void Sidebar::updateRows() {
    updating_ = true;
    rows_.setClones(model_.clones());
    const int row = selection_ ? rows_.rowOf(*selection_) : -1;
    if (row >= 0) {
        list_->setCurrentIndex(rows_.index(row));
    } else {
        list_->selectionModel()->clear();
    }
    updating_ = false;
    states_->setCurrentIndex(model_.clones().empty() ? 0 : 1);
}

void Sidebar::select(const std::string& id) {
    const int row = rows_.rowOf(id);
    if (row >= 0) {
        list_->setCurrentIndex(rows_.index(row));
    }
}

void Sidebar::follow(const std::string& from, const std::string& to) {
    if (selection_ == from) {
        select(to);
    }
}

void Sidebar::editName() {
    list_->editName();
}

bool Sidebar::isEditing() const {
    return list_->isEditing();
}

void Sidebar::takeName(const std::string& id, const QString& name) {
    if (const InstanceRecord* clone = model_.clone(id)) {
        Q_EMIT nameEntered(InstanceRecord(*clone), name.toStdString());
    }
}

void Sidebar::rowSelected() {
    // Model updates must not change the selection, not even when its clone is gone.
    if (updating_) {
        return;
    }
    const QModelIndexList rows = list_->selectionModel()->selectedIndexes();
    selection_ =
        rows.isEmpty() ? std::nullopt : std::optional(rows_.clone(rows.front().row()).id());
    Q_EMIT selectionChanged();
}

} // namespace quorvel

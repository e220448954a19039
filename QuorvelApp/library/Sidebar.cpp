#include "QuorvelApp/library/Sidebar.h"

#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/Components.h"
#include "QuorvelApp/library/CloneRow.h"
#include "QuorvelApp/widgets/ItemList.h"

#include <QStackedLayout>
#include <QVBoxLayout>

namespace quorvel {

using namespace Qt::StringLiterals;

Sidebar::Sidebar(AppModel& model, IconLoader& icons, QWidget* parent)
    : QWidget(parent),
      model_(model),
      states_(new QStackedLayout(this)) {
    setObjectName(u"sidebar"_s);
    setAttribute(Qt::WA_StyledBackground);
    setMinimumWidth(minimumColumnWidth);
    states_->addWidget(makeEmptyState());
    states_->addWidget(makeList(icons));
    connect(&model_, &AppModel::clonesChanged, this, &Sidebar::updateRows);
    connect(&model_, &AppModel::runningBundleIdsChanged, this,
            [this] { rows_.setRunning(model_.runningBundleIds()); });
    connect(&icons, &IconLoader::loaded, list_->viewport(),
            [this] { list_->viewport()->update(); });
    updateRows();
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

QWidget* Sidebar::makeList(IconLoader& icons) {
    auto* page = new QWidget(this);
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(0, Spacing::group, 0, 0);
    column->setSpacing(Spacing::close);
    QLabel* heading = makeLabel(tr("Clones"), TextStyle::captionMedium, Ink::secondary);
    heading->setContentsMargins(Spacing::section, 0, Spacing::section, 0);
    list_ = new ItemList;
    list_->setObjectName(u"clones"_s);
    list_->setAccessibleName(tr("Clones"));
    list_->setModel(&rows_);
    list_->setItemDelegate(new CloneRow(icons, list_));
    list_->setUniformItemSizes(true);
    list_->setMouseTracking(true);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    heading->setBuddy(list_);
    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &Sidebar::rowSelected);
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

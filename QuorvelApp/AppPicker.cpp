#include "QuorvelApp/AppPicker.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/ShownText.h"

#include <QApplication>
#include <QResizeEvent>
#include <QScrollBar>
#include <QStackedLayout>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace quorvel {
namespace {

QWidget* makeLoadingPage() {
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setSpacing(12);
    column->addStretch();
    column->addWidget(new Spinner(28), 0, Qt::AlignHCenter);
    column->addWidget(makeLabel(AppPicker::tr("Scanning your apps…"), TextStyle::body), 0,
                      Qt::AlignHCenter);
    column->addStretch();
    return page;
}

} // namespace

AppGrid::AppGrid(AppTile* tiles) : tiles_(tiles) {
    tiles->setParent(this);
    setItemDelegate(tiles);
    setViewMode(QListView::IconMode);
    setMovement(QListView::Static);
    setResizeMode(QListView::Adjust);
    setUniformItemSizes(true);
    setMouseTracking(true);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Half of the spacing is in the cells.
    setViewportMargins(AppTile::spacing / 2, AppTile::spacing / 2, 0, 0);
}

void AppGrid::resizeEvent(QResizeEvent* event) {
    // The layout keeps room for a scroll bar, whether it shows or not.
    const int room = maximumViewportSize().width() -
                     style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this) - 1;
    const int columns = std::max(1, room / (AppTile::minimumWidth + AppTile::spacing));
    const int width =
        std::clamp(room / columns - AppTile::spacing, AppTile::minimumWidth, AppTile::maximumWidth);
    tiles_->setWidth(width);
    setGridSize({width + AppTile::spacing, AppTile::height + AppTile::spacing});
    QListView::resizeEvent(event);
}

AppPicker::AppPicker(NewCloneSession& session, IconLoader& icons)
    : session_(session),
      apps_(session.model().sandboxStatus()),
      states_(new QStackedLayout(this)),
      nothing_(makeWrappingLabel({}, TextStyle::body, Ink::secondary)) {
    auto* tiles = new AppTile(icons);
    grid_ = new AppGrid(tiles);
    grid_->setModel(&apps_);
    grid_->setAccessibleName(tr("Apps"));
    nothing_->setAlignment(Qt::AlignCenter);
    nothing_->setContentsMargins(24, 24, 24, 24);
    states_->addWidget(makeLoadingPage());
    states_->addWidget(nothing_);
    states_->addWidget(grid_);

    AppModel& model = session.model();
    connect(tiles, &AppTile::appeared, this, &AppPicker::tileAppeared);
    connect(grid_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &AppPicker::tileChosen);
    connect(grid_, &QListView::clicked, this, &AppPicker::tileClicked);
    connect(&icons, &IconLoader::loaded, grid_->viewport(),
            [this] { grid_->viewport()->update(); });
    connect(&model, &AppModel::sandboxStatusChanged, &apps_, &AppGridModel::sandboxStatusChanged);
    connect(&model, &AppModel::catalogChanged, this, &AppPicker::refresh);
    connect(&model, &AppModel::catalogLoadingChanged, this, &AppPicker::refresh);
    connect(&session_, &NewCloneSession::changed, this, &AppPicker::refresh);
    refresh();
}

void AppPicker::refresh() {
    const AppModel& model = session_.model();
    refreshing_ = true;
    apps_.setApps(session_.form().filtered(model.catalog()));
    showSelected();
    refreshing_ = false;
    nothing_->setText(breakable(shownLine(session_.form().noAppsText())));
    states_->setCurrentIndex(model.catalogLoading() && model.catalog().empty() ? 0
                             : apps_.rowCount() == 0                           ? 1
                                                                               : 2);
}

void AppPicker::showSelected() {
    const auto& selected = session_.form().selected;
    const int row = selected ? apps_.rowOf(selected->id()) : -1;
    if (row < 0 || apps_.app(row) != *selected) {
        grid_->selectionModel()->clear();
    } else if (grid_->currentIndex().row() != row ||
               !grid_->selectionModel()->isSelected(apps_.index(row))) {
        grid_->setCurrentIndex(apps_.index(row));
    }
}

void AppPicker::tileChosen(const QModelIndex& index) {
    if (!refreshing_ && index.isValid()) {
        chosenByPress_ = QApplication::mouseButtons() == Qt::NoButton ? -1 : index.row();
        session_.select(InstalledApp(apps_.app(index.row())));
    }
}

void AppPicker::tileClicked(const QModelIndex& index) {
    // A click on the chosen tile chooses it anew; on another one, the press has chosen it already.
    if (std::exchange(chosenByPress_, -1) != index.row()) {
        tileChosen(index);
    }
}

void AppPicker::tileAppeared(const InstalledApp& app) {
    // Asked once a sheet: a tile is painted over and over.
    if (asked_.insert(app.id()).second) {
        session_.model().ensureSandboxStatus(app);
    }
}

} // namespace quorvel

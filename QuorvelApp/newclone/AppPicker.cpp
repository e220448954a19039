#include "QuorvelApp/newclone/AppPicker.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/model/DisplayText.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStackedLayout>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

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
    setObjectName(QStringLiteral("apps"));
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
    connect(this, &QListView::clicked, this, &AppGrid::press);
}

QModelIndex AppGrid::indexAt(const QPoint& point) const {
    const QModelIndex index = QListView::indexAt(point);
    return AppTile::tileRect(visualRect(index)).contains(point) ? index : QModelIndex();
}

QItemSelectionModel::SelectionFlags AppGrid::selectionCommand(const QModelIndex&,
                                                              const QEvent*) const {
    return QItemSelectionModel::NoUpdate; // moving the focus ring selects nothing
}

void AppGrid::press(const QModelIndex& index) {
    selectionModel()->clearSelection(); // a tile is a button: the selected one can be pressed again
    selectionModel()->select(index, QItemSelectionModel::ClearAndSelect);
}

// The ring starts at the selected tile or the first one, except on a mouse press, where scrolling
// would move the tiles away from under the pointer.
void AppGrid::focusInEvent(QFocusEvent* event) {
    const bool hadRing = currentIndex().isValid();
    QListView::focusInEvent(event);
    const bool byMouse =
        event->reason() == Qt::MouseFocusReason || event->reason() == Qt::ActiveWindowFocusReason;
    if (!hadRing && !byMouse) {
        const QModelIndexList selected = selectionModel()->selectedIndexes();
        setCurrentIndex(selected.isEmpty() ? model()->index(0, 0) : selected.front());
    }
}

void AppGrid::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QModelIndex ring = currentIndex();
    const bool isPressed =
        event->key() == Qt::Key_Space || (isReturn && !selectionModel()->isSelected(ring));
    if (ring.isValid() && isPressed) {
        press(ring);
        event->accept();
    } else if (isReturn) {
        event->ignore(); // the dialog's default button takes it
    } else {
        QListView::keyPressEvent(event);
    }
}

void AppGrid::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        QListView::mousePressEvent(event);
    }
}

void AppGrid::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() == Qt::NoButton) {
        QListView::mouseMoveEvent(event);
    }
}

void AppGrid::updateGeometries() {
    QListView::updateGeometries();
    // The space below the last row equals that above the first.
    const int beyond = contentsSize().height() + AppTile::spacing / 2 - viewport()->height();
    verticalScrollBar()->setMaximum(std::max(0, beyond));
}

void AppGrid::resizeEvent(QResizeEvent* event) {
    // The layout reserves space for a scroll bar, visible or not.
    const int available = maximumViewportSize().width() -
                          style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this) - 1;
    const int columns = std::max(1, available / (AppTile::minimumWidth + AppTile::spacing));
    const int width = std::clamp(available / columns - AppTile::spacing, AppTile::minimumWidth,
                                 AppTile::maximumWidth);
    tiles_->setWidth(width);
    setGridSize({width + AppTile::spacing, AppTile::height + AppTile::spacing});
    QListView::resizeEvent(event);
}

AppPicker::AppPicker(NewCloneSession& session, IconLoader& icons, QWidget* parent)
    : QWidget(parent),
      session_(session),
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
    connect(grid_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &AppPicker::tileSelected);
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
    const QModelIndex ring = grid_->currentIndex();
    const std::string ringed = ring.isValid() ? apps_.app(ring.row()).id() : std::string();
    apps_.setApps(session_.form().filtered(model.catalog()));
    showRing(apps_.rowOf(ringed));
    showSelected();
    refreshing_ = false;
    nothing_->setText(breakable(displayLine(session_.form().noAppsText())));
    states_->setCurrentIndex(model.catalogLoading() && model.catalog().empty() ? 0
                             : apps_.rowCount() == 0                           ? 1
                                                                               : 2);
}

// The scroll position is the user's choice.
void AppPicker::showRing(int row) {
    if (row >= 0) {
        grid_->setAutoScroll(false);
        grid_->setCurrentIndex(apps_.index(row));
        grid_->setAutoScroll(true);
    }
}

void AppPicker::showSelected() {
    const auto& selected = session_.form().selected;
    const int row = selected ? apps_.rowOf(selected->id()) : -1;
    if (row < 0 || apps_.app(row) != *selected) {
        grid_->selectionModel()->clearSelection();
    } else {
        grid_->selectionModel()->select(apps_.index(row), QItemSelectionModel::ClearAndSelect);
    }
}

void AppPicker::tileSelected() {
    const QModelIndexList selected = grid_->selectionModel()->selectedIndexes();
    if (!refreshing_ && !selected.isEmpty()) {
        session_.select(InstalledApp(apps_.app(selected.front().row())));
    }
}

void AppPicker::tileAppeared(const QModelIndex& tile) {
    const InstalledApp& app = apps_.app(tile.row());
    // Requested once per sheet, since tiles are painted repeatedly.
    if (asked_.insert(app.id()).second) {
        session_.model().ensureSandboxStatus(app);
    }
}

} // namespace quorvel

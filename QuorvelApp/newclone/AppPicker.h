#pragma once

#include "QuorvelApp/model/AppGridModel.h"
#include "QuorvelApp/model/NewCloneSession.h"
#include "QuorvelApp/newclone/AppTile.h"

#include <QListView>
#include <QWidget>

#include <set>
#include <string>

class QLabel;
class QStackedLayout;

namespace quorvel {

/// A grid of tiles that act like buttons: clicking one, or pressing Space or Return on the focused
/// one, selects it. The arrow keys and typing move only the focus ring. The columns fill the width,
/// within the tiles' minimum and maximum widths.
class AppGrid : public QListView {
    Q_OBJECT

public:
    explicit AppGrid(AppTile* tiles);

    /// Returns an invalid index between the tiles.
    [[nodiscard]] QModelIndex indexAt(const QPoint& point) const override;

protected:
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void updateGeometries() override;
    [[nodiscard]] QItemSelectionModel::SelectionFlags
    selectionCommand(const QModelIndex& index, const QEvent* event) const override;

private:
    void press(const QModelIndex& index);

    AppTile* tiles_;
};

/// The installed apps to choose from, or why there are none.
class AppPicker : public QWidget {
    Q_OBJECT

public:
    AppPicker(NewCloneSession& session, IconLoader& icons, QWidget* parent);

private:
    void refresh();
    void showRing(int row);
    void showSelected();
    void tileSelected();
    void tileAppeared(const QModelIndex& tile);

    NewCloneSession& session_;
    AppGridModel apps_;
    QStackedLayout* states_;
    QLabel* nothing_;
    AppGrid* grid_;
    std::set<std::string> asked_{};
    bool refreshing_ = false;
};

} // namespace quorvel

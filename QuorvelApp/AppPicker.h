#pragma once

#include "QuorvelApp/AppGridModel.h"
#include "QuorvelApp/AppTile.h"
#include "QuorvelApp/ItemList.h"
#include "QuorvelApp/NewCloneSession.h"

#include <QWidget>

#include <set>
#include <string>

class QLabel;
class QStackedLayout;

namespace quorvel {

/// A grid whose columns take up the width, between the tiles' narrowest and widest.
class AppGrid : public ItemList {
    Q_OBJECT

public:
    explicit AppGrid(AppTile* tiles);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    AppTile* tiles_;
};

/// The installed apps to choose from, or why there are none.
class AppPicker : public QWidget {
    Q_OBJECT

public:
    AppPicker(NewCloneSession& session, IconLoader& icons);

private:
    void refresh();
    void showSelected();
    void tileChosen(const QModelIndex& index);
    void tileClicked(const QModelIndex& index);
    void tileAppeared(const InstalledApp& app);

    NewCloneSession& session_;
    AppGridModel apps_;
    QStackedLayout* states_;
    QLabel* nothing_;
    AppGrid* grid_;
    std::set<std::string> asked_{};
    bool refreshing_ = false;
    int chosenByPress_ = -1; ///< the row that the mouse button under way has chosen
};

} // namespace quorvel

#pragma once

#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/model/CloneListModel.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QWidget>

#include <optional>
#include <string>

class QLabel;
class QListView;
class QStackedLayout;

namespace quorvel {

/// The list of clones, or an invitation to create the first.
class Sidebar : public QWidget {
    Q_OBJECT

public:
    static constexpr int minimumColumnWidth = 240;
    static constexpr int idealColumnWidth = 280;

    /// Both must outlive the widget.
    Sidebar(AppModel& model, IconLoader& icons, QWidget* parent = nullptr);

    /// The selected clone's identity, which stays after its row is gone; std::nullopt if no clone
    /// is selected.
    [[nodiscard]] const std::optional<std::string>& selection() const { return selection_; }
    /// Selects the clone with that identity, if it is listed.
    void select(const std::string& id);

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void selectionChanged();
    void newCloneRequested();

private:
    [[nodiscard]] QWidget* makeEmptyState();
    [[nodiscard]] QWidget* makeList(IconLoader& icons);
    void updateRows();
    void rowSelected();

    AppModel& model_;
    CloneListModel rows_{};
    QStackedLayout* states_;
    QListView* list_ = nullptr;
    std::optional<std::string> selection_{};
    bool updating_ = false;
};

} // namespace quorvel

#pragma once

#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/Components.h"

#include <QPointer>
#include <QWidget>

#include <memory>
#include <string>
#include <vector>

class QVBoxLayout;

namespace quorvel {

struct InstanceRecord;

class ElidedLabel;
class MigrationCallout;

/// One clone: its facts and the actions on it. Follows the model and rebuilds only rows that
/// changed.
class CloneDetailView : public QWidget {
    Q_OBJECT

public:
    /// `model` and `icons` must outlive the widget. `sheets` is the widget over which dialogs show.
    CloneDetailView(AppModel& model, IconLoader& icons, QWidget* sheets, QWidget* parent = nullptr);
    ~CloneDetailView() override;

    /// Shows another clone, or another state of the same.
    void setClone(const InstanceRecord& clone);
    /// What is being done with the clone.
    struct Activity {
        bool isChanging = false;
        bool isStopping = false;
    };
    /// Shows what is being done with the clone. While it is changed, its actions are disabled.
    void setActivity(const Activity& activity);
    /// Updates whether the clone is running, and whether its home offers a migration.
    void refreshRunning();
    /// Opens the clone, or brings it to the front.
    void launch();
    /// Asks whether to delete the clone.
    void confirmDelete();

private:
    [[nodiscard]] QWidget* makeHeader(IconLoader& icons);
    [[nodiscard]] QWidget* makeActions();
    void setActionsEnabled(bool enabled);
    void showCallout();
    void setRows(const std::vector<Fact>& rows);
    /// Refreshes which clones run, since there is no signal for those started or ended elsewhere.
    [[nodiscard]] bool isRunningNow(const InstanceRecord& clone);
    /// If the clone is running, tells the user what happens to it.
    void removeWithoutData(const InstanceRecord& clone);
    /// Asks again if the clone is running.
    void removeWithData(const InstanceRecord& clone);
    void confirmMigration();

    AppModel& model_;
    QWidget* sheets_;
    std::unique_ptr<InstanceRecord> clone_; ///< empty until the first `setClone`, never null
    WindowGrouping grouping_ = WindowGrouping::own;
    std::vector<Fact> rows_{};
    AppIcon* icon_ = nullptr;
    ElidedLabel* name_ = nullptr;
    StatusDot* dot_ = nullptr;
    QLabel* status_ = nullptr;
    QWidget* actions_ = nullptr;
    QPushButton* launch_ = nullptr;
    QPointer<QWidget> focusBefore_{}; ///< the action that was focused when they were disabled
    Activity activity_{};
    MigrationCallout* callout_ = nullptr;
    QVBoxLayout* details_ = nullptr;
};

} // namespace quorvel

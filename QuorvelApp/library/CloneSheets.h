#pragma once

#include "QuorvelApp/model/CloneChanges.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

class QWidget;

namespace quorvel {

class AppModel;
class ProgressSheet;

/// Does what the commands on clones ask for, as far as that needs panels and questions over the
/// window: the log, the progress of a refresh, stopping by force.
class CloneSheets : public QObject {
    Q_OBJECT

public:
    /// Shows over `window`, which owns it. The others must outlive it.
    CloneSheets(AppModel& model, CloneChanges& changes, QWidget* window);
    /// Cancels a refresh under way after the clone at hand.
    ~CloneSheets() override;

    /// Shows the clone's log until the user closes it.
    void showLog(const InstanceRecord& clone);
    /// Refreshes the clones, and shows the progress unless that is done at once.
    void refresh(const std::vector<InstanceRecord>& clones);

private:
    void showProgress(int total, const std::shared_ptr<ChangeProgress>& progress);
    void askForForce(const InstanceRecord& clone, std::size_t left);

    AppModel& model_;
    CloneChanges& changes_;
    QWidget* window_;
    std::weak_ptr<ChangeProgress> refresh_{}; ///< the latest one
    QPointer<ProgressSheet> progress_{};
};

} // namespace quorvel

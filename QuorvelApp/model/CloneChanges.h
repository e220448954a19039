#pragma once

#include "LaunchKit/Changes/CloneStop.h"
#include "Presentation/RefreshSummary.h"
#include "QuorvelApp/model/Outcome.h"

#include <QFuture>
#include <QObject>

#include <atomic>
#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace quorvel {

class AppModel;
struct ChangedClone;
struct InstanceRecord;

/// The progress of a change of several clones. Any thread.
struct ChangeProgress {
    std::atomic<int> done = 0;
    std::atomic<bool> isCancelled = false;
};

/// Changes and stops existing clones in the background, and lists them again after a change.
/// What the user should know becomes the model's `lastError` or `statusMessage`; whether to use
/// force is asked by `stillRunning`. Main thread only.
class CloneChanges : public QObject {
    Q_OBJECT

public:
    /// `model` must outlive it.
    explicit CloneChanges(AppModel& model, QObject* parent = nullptr);
    CloneChanges(const CloneChanges&) = delete;
    CloneChanges& operator=(const CloneChanges&) = delete;
    /// Stops waiting for clones to end.
    ~CloneChanges() override;

    /// Gives the clone another name; its data stays where it is.
    QFuture<void> rename(const InstanceRecord& clone, const std::string& name);
    /// Returns whether the clone is being renamed.
    [[nodiscard]] bool isRenaming(const InstanceRecord& clone) const;

    /// Brings these clones up to date, one after the other, until `progress` is cancelled. A
    /// failure of one does not keep it from the others.
    QFuture<void> refresh(const std::vector<InstanceRecord>& clones,
                          const std::shared_ptr<ChangeProgress>& progress);
    /// Returns whether a refresh is under way.
    [[nodiscard]] bool isRefreshing() const { return refreshing_ > 0; }
    /// Returns whether the clone is being changed, so that nothing else may be done with it. A
    /// clone that is being renamed has a new identity afterwards.
    [[nodiscard]] bool isChanging(const InstanceRecord& clone) const {
        return isRefreshing() || isRenaming(clone);
    }

    /// Whether what does not end when asked is killed.
    enum class Force { never, afterAsking };
    /// Ends everything that the clone runs: asks it to, then waits for the `stopPatience` of
    /// `AppServices`. With force it waits a shorter time, then kills what is left.
    QFuture<void> stop(const InstanceRecord& clone, Force force = Force::never);
    /// Stops waiting for the clone to end. It was asked to, so it may still do so.
    void cancelStop(const InstanceRecord& clone);
    /// Returns whether the clone is being stopped.
    [[nodiscard]] bool isStopping(const InstanceRecord& clone) const;

Q_SIGNALS:
    /// A clone has a new identity, by which the model now lists it.
    void renamed(const std::string& from, const std::string& to);
    /// `left` processes of a clone are still running although they were asked to end.
    void stillRunning(const quorvel::InstanceRecord& clone, std::size_t left);
    /// `isRefreshing`, `isRenaming` or `isStopping` has changed.
    void activityChanged();

private:
    void renameDone(const InstanceRecord& clone, const Outcome<ChangedClone>& outcome);
    void refreshDone(const Outcome<RefreshSummary>& outcome);
    void stopDone(const InstanceRecord& clone, Force force, const Outcome<StoppedClone>& outcome);

    using Cancellation = std::shared_ptr<std::atomic<bool>>;

    AppModel& model_;
    int refreshing_ = 0;
    std::set<std::string> renaming_{};               ///< identities
    std::map<std::string, Cancellation> stopping_{}; ///< by identities
};

} // namespace quorvel

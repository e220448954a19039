#include "QuorvelApp/model/CloneChanges.h"

#include "LaunchKit/Changes/CloneRefresh.h"
#include "LaunchKit/Changes/CloneRenaming.h"
#include "Presentation/ChangeTexts.h"
#include "Presentation/JoinedText.h"
#include "Presentation/StopTexts.h"
#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/model/Translated.h"

#include <algorithm>
#include <chrono>
#include <functional>

namespace quorvel {

using namespace std::chrono_literals;

namespace {

// Before force is used. It is short, since the user has waited for the clone before.
constexpr std::chrono::milliseconds lastPatience = 2s;

// Repairs the menu on a worker thread, after a change.
struct MenuUpdate {
    explicit MenuUpdate(const AppServices& services)
        : registry(services.registry),
          repair(services.repairMenu) {}

    void operator()() const { repair(registry.list()); }

    InstanceRegistry registry;
    std::function<void(const std::vector<InstanceRecord>&)> repair;
};

void refreshOne(const CloneRefresh& refresh, const InstanceRecord& clone, RefreshSummary& summary) {
    try {
        const ChangedClone changed = refresh.refresh(clone.bundleURL);
        ++(changed.isChanged ? summary.refreshed : summary.current);
        const auto notes = changeNotes(changed, changed.isRunning, translated);
        summary.notes.insert(summary.notes.end(), notes.begin(), notes.end());
    } catch (const std::exception& error) {
        summary.failures.emplace_back(error.what());
    }
}

RefreshSummary refreshAll(const std::vector<InstanceRecord>& clones, ChangeProgress& progress) {
    RefreshSummary summary;
    const CloneRefresh refresh;
    for (const InstanceRecord& clone : clones) {
        if (progress.isCancelled) {
            ++summary.skipped;
        } else {
            refreshOne(refresh, clone, summary);
            ++progress.done;
        }
    }
    return summary;
}

// The path by which the model lists a clone in the same folder.
std::string identityAfter(const InstanceRecord& old, const InstanceRecord& now) {
    return (old.bundleURL.parent_path() / now.bundleURL.filename()).string();
}

} // namespace

CloneChanges::CloneChanges(AppModel& model, QObject* parent) : QObject(parent), model_(model) {}

CloneChanges::~CloneChanges() {
    for (const auto& [id, cancelled] : stopping_) {
        *cancelled = true;
    }
}

QFuture<void> CloneChanges::rename(const InstanceRecord& clone, const std::string& name) {
    renaming_.insert(clone.id());
    Q_EMIT activityChanged();
    return model_.services().tasks->detached(
        TaskPriority::userInitiated, this,
        capturingErrors([clone, name, updateMenu = MenuUpdate(model_.services())] {
            ChangedClone changed = renameClone(clone.bundleURL, {.name = name});
            updateMenu();
            return changed;
        }),
        [this, clone](const Outcome<ChangedClone>& outcome) { renameDone(clone, outcome); });
}

void CloneChanges::renameDone(const InstanceRecord& clone, const Outcome<ChangedClone>& outcome) {
    renaming_.erase(clone.id());
    model_.reload();
    Q_EMIT activityChanged();
    if (!outcome.result) {
        model_.setLastError(sentence(tr("Couldn't rename: %1"), {outcome.failure}));
        return;
    }
    const ChangedClone& changed = *outcome.result;
    Q_EMIT renamed(clone.id(), identityAfter(clone, changed.record));
    const bool isRunning = changed.isRunning || model_.isRunning(changed.record);
    const auto notes = changeNotes(changed, isRunning, translated);
    if (!notes.empty()) {
        model_.setStatusMessage(joined(notes, "\n"));
    }
}

QFuture<void> CloneChanges::refresh(const std::vector<InstanceRecord>& clones,
                                    const std::shared_ptr<ChangeProgress>& progress) {
    ++refreshing_;
    Q_EMIT activityChanged();
    return model_.services().tasks->detached(
        TaskPriority::userInitiated, this,
        capturingErrors([clones, progress, updateMenu = MenuUpdate(model_.services())] {
            RefreshSummary summary = refreshAll(clones, *progress);
            updateMenu();
            return summary;
        }),
        [this](const Outcome<RefreshSummary>& outcome) { refreshDone(outcome); });
}

void CloneChanges::refreshDone(const Outcome<RefreshSummary>& outcome) {
    --refreshing_;
    Q_EMIT activityChanged();
    model_.reload();
    if (!outcome.result) {
        model_.setLastError(sentence(tr("Couldn't refresh: %1"), {outcome.failure}));
    } else if (outcome.result->failures.empty()) {
        model_.setStatusMessage(refreshMessage(*outcome.result, translated));
    } else {
        model_.setLastError(refreshMessage(*outcome.result, translated));
    }
}

QFuture<void> CloneChanges::stop(const InstanceRecord& clone, Force force) {
    const auto cancelled = std::make_shared<std::atomic<bool>>(false);
    stopping_.insert_or_assign(clone.id(), cancelled);
    Q_EMIT activityChanged();
    const AppServices& services = model_.services();
    StopOptions options{.patience = services.stopPatience};
    if (force == Force::afterAsking) {
        // Processes that were started meanwhile have not been asked yet.
        options = {.patience = std::min(services.stopPatience, lastPatience),
                   .mayForce = [](std::size_t) { return true; }};
    }
    options.cancelled = cancelled.get();
    return services.tasks->detached(
        TaskPriority::userInitiated, this,
        capturingErrors([clone, options, cancelled, registry = services.registry] {
            return stopClone(registry, clone, options);
        }),
        [this, clone, force](const Outcome<StoppedClone>& outcome) {
            stopDone(clone, force, outcome);
        });
}

void CloneChanges::cancelStop(const InstanceRecord& clone) {
    if (const auto stop = stopping_.find(clone.id()); stop != stopping_.end()) {
        *stop->second = true;
    }
}

void CloneChanges::stopDone(const InstanceRecord& clone, Force force,
                            const Outcome<StoppedClone>& outcome) {
    using Case = StoppedClone::Case;
    const auto stop = stopping_.extract(clone.id());
    const bool isCancelled = !stop.empty() && *stop.mapped();
    model_.refreshRunningState();
    Q_EMIT activityChanged();
    const std::string& name = clone.config.displayName;
    if (!outcome.result) {
        model_.setLastError(sentence(tr("Couldn't stop: %1"), {outcome.failure}));
    } else if (outcome.result->outcome == Case::elsewhere) {
        model_.setLastError(usedElsewhereText(name, translated));
    } else if (outcome.result->outcome == Case::running && isCancelled) {
        return; // the user knows
    } else if (outcome.result->outcome == Case::running && force == Force::never) {
        Q_EMIT stillRunning(clone, outcome.result->left);
    } else if (outcome.result->outcome == Case::running) {
        model_.setLastError(stillRunningText(name, outcome.result->left, translated));
    }
}

bool CloneChanges::isRenaming(const InstanceRecord& clone) const {
    return renaming_.contains(clone.id());
}

bool CloneChanges::isStopping(const InstanceRecord& clone) const {
    return stopping_.contains(clone.id());
}

} // namespace quorvel

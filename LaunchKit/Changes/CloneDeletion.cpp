#include "LaunchKit/Changes/CloneDeletion.h"

#include "Base/PathText.h"
#include "LaunchKit/Changes/ChangeJournal.h"
#include "LaunchKit/Changes/ClonesLock.h"
#include "LaunchKit/Homes/DataFolderGuard.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Launching/WindowWord.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/homes/IsolatedEnvironment.h"
#include "Platform/removal/FileRemoval.h"
#include "Platform/removal/ItemRemoval.h"
#include "Platform/staging/StagedChange.h"

#include <optional>
#include <string_view>
#include <tuple>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// The configuration's path relative to its wrapper.
std::string relativeConfig() {
    return configOf("").substr(1);
}

// The data folder of a deletion: its outcome if it stays, or the removal still to be made.
struct DataStep {
    DeletedData data{};
    std::optional<ItemRemoval> removal{};
};

bool isSameClone(const InstanceConfig& one, const InstanceConfig& other) {
    const auto essence = [](const InstanceConfig& config) {
        return std::tie(config.bundleId, config.kind, config.targetAppPath, config.instanceHome,
                        config.url, config.openPath, config.commandPath);
    };
    return essence(one) == essence(other);
}

bool isAnother(const std::optional<InstanceRecord>& now, const InstanceRecord& listed) {
    if (now) {
        return !isSameClone(now->config, listed.config);
    }
    return itemExists(listed.bundleURL) && !isDamagedWrapper(listed.bundleURL) &&
           !isUnfinishedWrapper(listed.bundleURL);
}

[[noreturn]] void refuseAnother(const fs::path& wrapper) {
    throw RefusedDeletion("The clone at " + wrapper.string() +
                          " is no longer the one that was listed, so nothing was deleted. "
                          "List the clones again and check it first.");
}

[[noreturn]] void refuse(const fs::path& folder, const std::string& reason) {
    throw RefusedDeletion("The data folder " + folder.string() + " " + reason +
                          ", so nothing was deleted.");
}

DeletedData keptFor(const fs::path& folder, const PlatformError& error) {
    return {.outcome = DeletedData::Case::kept, .folder = folder, .reason = error.description()};
}

DataStep dataStep(const InstanceRegistry& registry, const InstanceRecord& record) {
    const DataFolder folder = dataFolderOf(record.config);
    // A relative path would name another folder here than it did for the clone.
    if (folder.isNone) {
        return {{.outcome = DeletedData::Case::spared, .folder = record.config.resolvedHome()}, {}};
    }
    if (holdsUserHome(folder.path)) {
        return {{.outcome = DeletedData::Case::spared, .folder = folder.path}, {}};
    }
    if (folder.isBehindLink) {
        refuse(folder.path, identityOf(folder.path) ? "is what a symbolic link leads to"
                                                    : "is not written as a plain path");
    }
    DataStep step{{.folder = folder.path}, {}};
    try {
        step.removal = ItemRemoval::of(folder.path);
    } catch (const PlatformError& error) {
        return {keptFor(folder.path, error), {}};
    }
    if (!step.removal) {
        return step;
    }
    const DataFolderGuard guard(registry, record.bundleURL);
    const ComparedItem place(folder.path, step.removal->identity());
    if (guard.isInWrapper(place)) {
        refuse(folder.path, "is inside the clone itself");
    }
    if (const auto reason = guard.objection(place)) {
        refuse(folder.path, *reason);
    }
    step.removal->refuseMounts();
    try {
        step.removal->refuseUnchangeable();
    } catch (const PlatformError& error) {
        return {keptFor(folder.path, error), {}};
    }
    return step;
}

void removeData(DataStep& step) {
    if (!step.removal) {
        return;
    }
    const RemovalReport report = step.removal->remove();
    DeletedData& data = step.data;
    data.removedItems = report.removed;
    data.remainingItems = report.remaining;
    if (report.isComplete()) {
        data.outcome = DeletedData::Case::removed;
        return;
    }
    data.outcome = report.removed == 0 ? DeletedData::Case::kept : DeletedData::Case::partly;
    data.reason = report.failure ? report.failure->description() : "";
}

void throwFailure(const RemovalReport& report) {
    if (report.failure) {
        throw PlatformError(*report.failure);
    }
}

// Once data is removed, a failure must not look as if nothing had been.
void removeRest(const ItemRemoval& wrapper, DeletedData& data) {
    const RemovalReport report = wrapper.remove();
    if (data.removedItems == 0) {
        throwFailure(report);
    } else if (report.failure) {
        data.wrapperReason = report.failure->description();
    }
}

// Puts back what can't be removed, unless another clone could take it for its own meanwhile.
bool putBack(const InstanceRegistry& registry, const fs::path& bundle, const fs::path& folder,
             StagedChange& trash) {
    const std::string name = folder.filename();
    try {
        const std::optional<FileLock> lock = lockClones(bundle.parent_path());
        if (itemOrLinkExists(bundle) ||
            DataFolderGuard(registry, bundle).objection(ComparedItem(folder))) {
            return false;
        }
        trash.restore(name, name);
        return true;
    } catch (const Error&) {
        return false;
    }
}

// Removes the data from the hidden folder. What can't be removed is put back where it was, or stays
// there if that is not possible.
void removeMovedData(const InstanceRegistry& registry, const fs::path& bundle, DataStep& step,
                     StagedChange& trash) {
    const fs::path moved = joinAsText(trash.path(), step.data.folder.filename().string());
    step.removal = ItemRemoval::of(moved);
    removeData(step);
    if (!itemOrLinkExists(moved) || putBack(registry, bundle, step.data.folder, trash)) {
        return;
    }
    trash.keep();
    step.data.folder = moved;
}

// A wrapper and its data while they are being deleted.
struct Departure {
    StagedChange& change;
    std::optional<StagedChange>& trash; ///< for the data, if it is to be removed
    const ItemRemoval& wrapper;
    const DataStep& data;
};

// Moves the wrapper away, and the data with it. Returns false, with everything in its place, if
// that is not possible. Throws `RefusedDeletion`, with everything in its place, if either was
// replaced meanwhile, and `PlatformError` if something can't be put back; the next start does that.
bool moveAway(const Departure& leaving) {
    const std::string wrapper = leaving.wrapper.path().filename();
    const fs::path& folder = leaving.data.data.folder;
    try {
        if (!leaving.change.withdraw(wrapper, wrapper, leaving.wrapper.identity())) {
            refuseAnother(leaving.wrapper.path());
        }
    } catch (const PlatformError&) {
        return false;
    }
    bool isReplaced = false;
    try {
        const std::string name = folder.filename();
        isReplaced =
            leaving.trash && !leaving.trash->withdraw(name, name, leaving.data.removal->identity());
        if (!isReplaced) {
            return true;
        }
    } catch (const PlatformError&) {
        // The data can't be moved, but perhaps be removed where it is. The wrapper goes back.
    }
    try {
        leaving.change.restore(wrapper, wrapper);
    } catch (const PlatformError&) {
        leaving.change.keep();
        throw;
    }
    if (isReplaced) {
        refuse(folder, "was replaced meanwhile");
    }
    return false;
}

// Makes the hidden folders, the second one for the data, to which the first one leads.
void prepare(std::optional<StagedChange>& change, std::optional<StagedChange>& trash,
             const ItemRemoval& wrapper, const DataStep& step) {
    change.emplace(wrapper.path().parent_path());
    if (!step.removal) {
        return;
    }
    const fs::path folder = step.data.folder.parent_path();
    const auto above = identityOfTarget(folder);
    ChangeJournal{.wrapper = wrapper.path().filename(),
                  .home = step.data.folder,
                  .device = std::to_string(above ? above->device : 0)}
        .keepWith(*change);
    trash.emplace(folder);
    ChangeJournal::noteTrash(*change, *trash);
}

// Moves the wrapper and the data out of their places, each in one step, and removes them then. If
// that is interrupted before the data has moved, the next start puts the wrapper back; afterwards,
// it removes the rest. Returns false, with everything in its place, if there is no room for that.
bool removeAtOnce(const InstanceRegistry& registry, const ItemRemoval& wrapper, DataStep& step,
                  std::optional<FileLock>& lock) {
    std::optional<StagedChange> change;
    std::optional<StagedChange> trash;
    try {
        prepare(change, trash, wrapper, step);
    } catch (const PlatformError&) {
        return false;
    }
    if (!moveAway({*change, trash, wrapper, step})) {
        return false;
    }
    lock.reset(); // the rest affects no other change
    if (trash) {
        const fs::path place = trash->path();
        removeMovedData(registry, wrapper.path(), step, *trash);
        trash.reset();
        if (itemOrLinkExists(place)) {
            change->keep(); // its journal leads there
        } else {
            ChangeJournal::forget(*change);
        }
    }
    return true;
}

// After a link to a wrapper was removed, the clone itself is still there, and a new one may have
// taken its place. Without its runner, an entry that stays is not shown, and the next repair
// removes it.
void withdrawIfGone(const std::string& identity) noexcept {
    try {
        if (!itemOrLinkExists(identity)) {
            withdrawFromMenu(identity);
        }
    } catch (const std::exception&) {
        return;
    }
}

// In an order in which an interruption leaves a clone that can be deleted again.
void removeInPlace(const std::optional<ItemRemoval>& wrapper, DataStep& data) {
    if (wrapper) {
        throwFailure(wrapper->removeAllBut(relativeConfig()));
    }
    removeData(data);
    if (wrapper) {
        removeRest(*wrapper, data.data);
    }
}

// Before anything is changed.
void requireRemovable(const ItemRemoval& wrapper) {
    wrapper.refuseMounts();
    wrapper.refuseUnchangeable(relativeConfig());
    wrapper.refuseClosedFolders();
}

} // namespace

DeletedData deleteClone(const InstanceRegistry& registry, const InstanceRecord& record,
                        bool includingData, const InstanceRegistry::Deferral& later) {
    std::optional<FileLock> lock = lockClones(record.bundleURL.parent_path());
    // Opened before its configuration is read, so that the wrapper removed is the one that was
    // read.
    const std::optional<ItemRemoval> wrapper = ItemRemoval::of(record.bundleURL);
    if (wrapper) {
        requireRemovable(*wrapper);
    }
    // Another clone or an app may have replaced this one since it was listed.
    if (isAnother(registry.record(record.bundleURL), record)) {
        refuseAnother(record.bundleURL);
    }
    // Data that is kept must not be taken for what an interrupted copy left.
    keepCopiedData(record.config);
    const std::string identity = cloneIdentity(record.bundleURL);
    const bool isIdle = !isHomeInUse(record.config);
    DataStep data = includingData ? dataStep(registry, record) : DataStep();
    if (!wrapper || !removeAtOnce(registry, *wrapper, data, lock)) {
        removeInPlace(wrapper, data);
    }
    if (later) {
        later([identity] { withdrawIfGone(identity); });
    } else {
        withdrawIfGone(identity);
    }
    if (isIdle) {
        removeUnusedTemporaryFolder(record.config); // otherwise, its runner does when it ends
    }
    return data.data;
}

void removeDamagedWrapper(const fs::path& path, const ItemIdentity& identity) {
    std::optional<FileLock> lock = lockClones(path.parent_path());
    const std::optional<ItemRemoval> wrapper = ItemRemoval::of(path);
    if (!wrapper) {
        throw PlatformError(std::make_error_code(std::errc::no_such_file_or_directory), path,
                            "removed");
    }
    if (wrapper->identity() != identity || !isDamagedWrapper(path)) {
        refuseAnother(path);
    }
    requireRemovable(*wrapper);
    DataStep none;
    if (!removeAtOnce(InstanceRegistry(), *wrapper, none, lock)) {
        removeInPlace(wrapper, none);
    }
}

} // namespace quorvel

#include "LaunchKit/CloneDeletion.h"
#include "LaunchKit/InstanceRecord.h"

#include "LaunchKit/DataFolderGuard.h"
#include "LaunchKit/WrapperLayout.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/ItemRemoval.h"

#include <optional>
#include <string_view>
#include <tuple>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Relative to the wrapper, so without the slash that begins it.
constexpr std::string_view configuration = std::string_view(instanceConfigInBundle).substr(1);

// The data folder of a deletion: what becomes of it by itself, or the removal that takes it.
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

// Between listing and deleting, another clone or an app may have taken this one's place.
void refuseAnother(const InstanceRegistry& registry, const InstanceRecord& record) {
    if (isAnother(registry.record(record.bundleURL), record)) {
        throw RefusedDeletion("The clone at " + record.bundleURL.string() +
                              " is not the one that was listed any more, so nothing was deleted. "
                              "List the clones again, and look at it first.");
    }
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
    // A relative path would mean another folder than it meant to the clone, which ran elsewhere.
    if (folder.isNone) {
        return {{.outcome = DeletedData::Case::spared, .folder = record.config.resolvedHome()}, {}};
    }
    if (holdsUserHome(folder.path)) {
        return {{.outcome = DeletedData::Case::spared, .folder = folder.path}, {}};
    }
    if (folder.isBehindLink) {
        refuse(folder.path, identityOfItself(folder.path) ? "is what a symbolic link leads to"
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
    const Place place(folder.path, step.removal->identity());
    if (guard.isInWrapper(place)) {
        refuse(folder.path, "lies in the clone itself");
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

// Once data is gone, a failure must not look as if nothing were.
void removeRest(const ItemRemoval& wrapper, DeletedData& data) {
    const RemovalReport report = wrapper.remove();
    if (data.removedItems == 0) {
        throwFailure(report);
    } else if (report.failure) {
        data.wrapperReason = report.failure->description();
    }
}

std::string items(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " item" : " items");
}

} // namespace

std::string DeletedData::description() const {
    if (!wrapperReason.empty()) {
        const std::string gone = outcome == Case::removed
                                     ? "The data folder " + folder.string() + " is gone"
                                     : "Of the data folder " + folder.string() + " a part is gone";
        return gone + ", but the clone could not be removed as a whole. " + wrapperReason +
               (reason.empty() ? "" : ". " + reason);
    }
    switch (outcome) {
    case Case::kept:
        return "The clone is gone, but its data folder " + folder.string() + " is still there. " +
               reason;
    case Case::partly:
        return "The clone is gone, but of its data folder " + folder.string() +
               " only a part is: " + items(removedItems) + " removed, " + items(remainingItems) +
               " left. " + reason;
    case Case::spared:
        return "The data folder was kept: " + folder.string();
    case Case::untouched:
    case Case::removed:
        break;
    }
    return {};
}

DeletedData deleteClone(const InstanceRegistry& registry, const InstanceRecord& record,
                        bool includingData) {
    // Opened before its configuration is read, so that no other wrapper is removed than was read.
    const std::optional<ItemRemoval> wrapper = ItemRemoval::of(record.bundleURL);
    if (wrapper) {
        wrapper->refuseMounts();
        wrapper->refuseUnchangeable(configuration);
    }
    refuseAnother(registry, record);
    DataStep data = includingData ? dataStep(registry, record) : DataStep();
    if (wrapper) {
        throwFailure(wrapper->removeAllBut(configuration));
    }
    removeData(data);
    if (wrapper) {
        removeRest(*wrapper, data.data);
    }
    return data.data;
}

void removeWrapper(const fs::path& path) {
    const std::optional<ItemRemoval> wrapper = ItemRemoval::of(path);
    if (!wrapper) {
        throw PlatformError(std::make_error_code(std::errc::no_such_file_or_directory), path,
                            "removed");
    }
    wrapper->refuseMounts();
    throwFailure(wrapper->removeAllBut(configuration));
    throwFailure(wrapper->remove());
}

} // namespace quorvel

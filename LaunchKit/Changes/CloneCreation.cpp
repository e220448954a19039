#include "LaunchKit/Changes/CloneCreation.h"

#include "LaunchKit/Changes/ClonesLock.h"
#include "LaunchKit/Copying/CopiedData.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/files/FileLock.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/ItemIdentity.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Locked before anything is looked at: a wrapper that is still being written does not look like a
// clone.
std::optional<FileLock> lockAndValidate(const fs::path& folder,
                                        const std::function<void()>& validate) {
    std::optional<FileLock> lock = lockClones(folder);
    try {
        validate();
        return lock;
    } catch (const InvalidRequest&) {
        if (lock || !itemExists(folder)) {
            throw;
        }
    }
    // Another creation may have made the folder just then.
    lock = lockClones(folder);
    validate();
    return lock;
}

// The system distinguishes running clones by their identifiers.
void warnOfSameIdentifier(const InstanceRecord& made, const WrapperFactory::Warning& warn) {
    std::vector<fs::path> folders = InstanceRegistry::defaultSearchDirs();
    const fs::path beside = made.bundleURL.parent_path();
    if (std::none_of(folders.begin(), folders.end(),
                     [&](const fs::path& folder) { return isSameItem(folder, beside); })) {
        folders.push_back(beside);
    }
    for (const InstanceRecord& other : InstanceRegistry(std::move(folders)).list()) {
        if (other.config.bundleId == made.config.bundleId &&
            !isSameItem(other.bundleURL, made.bundleURL)) {
            warn("“" + made.config.displayName + "” has the same bundle identifier as “" +
                 other.config.displayName + "”, " + made.config.bundleId +
                 ". While one of them runs, both are shown as running. To keep them apart, make "
                 "it again under another name or with an identifier of its own.");
            return;
        }
    }
}

// The clone is made, with or without a warning.
void warnIfPossible(const InstanceRecord& made, const WrapperFactory::Warning& warn) noexcept {
    try {
        warnOfSameIdentifier(made, warn);
    } catch (...) {
        return;
    }
}

} // namespace

void clearPlaceFor(const WrapperFactory::Request& request) {
    const DataFolder data = dataFolderOf(request);
    if (data.isNone || data.isBehindLink) {
        return;
    }
    // An interrupted change may hide the clone whose data it is.
    (void)lockClones(WrapperFactory::wrapperURL(request).parent_path());
    CopiedData::removeUnfinished(data.path.parent_path());
}

MadeClone createClone(const WrapperFactory& factory, const WrapperFactory::Request& request,
                      const RequestPermissions& permissions, const WrapperFactory::Warning& warn,
                      const WrapperFactory::BeforeWriting& beforeWriting) {
    clearPlaceFor(request);
    return createCloneInClearPlace(factory, request, permissions, warn, beforeWriting);
}

MadeClone createCloneInClearPlace(const WrapperFactory& factory,
                                  const WrapperFactory::Request& request,
                                  const RequestPermissions& permissions,
                                  const WrapperFactory::Warning& warn,
                                  const WrapperFactory::BeforeWriting& beforeWriting) {
    const fs::path folder = WrapperFactory::wrapperURL(request).parent_path();
    std::optional<FileLock> lock = lockAndValidate(
        folder, [&] { validateRequest(request, factory.runnerBinary, permissions); });
    const auto lockLate = [&](const fs::path& wrapper) {
        if (!lock) {
            std::error_code ignored; // writing the wrapper reports it
            fs::create_directories(folder, ignored);
            lock = lockClones(folder);
            // Another creation may have made the folder, and this clone in it.
            requireReplaceable(wrapper, permissions);
        }
        if (beforeWriting) {
            beforeWriting(wrapper);
        }
    };
    MadeClone made{.wrapper = factory.create(request, lockLate, warn)};
    made.record = InstanceRegistry().record(made.wrapper);
    lock.reset(); // the search needs no lock
    if (made.record && warn) {
        warnIfPossible(*made.record, warn);
    }
    return made;
}

} // namespace quorvel

#include "LaunchKit/CloneCreation.h"

#include "LaunchKit/ClonesLock.h"
#include "LaunchKit/CopiedData.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/files/FileLock.h"
#include "Platform/files/FileSystem.h"

#include <functional>
#include <optional>

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
    return made;
}

} // namespace quorvel

#include "LaunchKit/Changes/CloneStop.h"

#include "Base/PathText.h"
#include "LaunchKit/Homes/DataFolderGuard.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/shutdown/TreeShutdown.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::vector<ProcessIdentity> runnersOf(const InstanceRecord& record) {
    std::error_code code;
    const fs::path runner = fs::weakly_canonical(runnerOf(record.bundleURL), code);
    return code ? std::vector<ProcessIdentity>() : processesOf(runner);
}

// Returns what holds the clone's home without a runner. In a home that several clones share, nobody
// can know whose it is.
std::vector<ProcessIdentity> orphansOf(const InstanceRegistry& registry,
                                       const InstanceRecord& record) {
    const DataFolder data = dataFolderOf(record.config);
    if (data.isNone || DataFolderGuard(registry, record.bundleURL)
                           .objection(ComparedItem(data.path))
                           .has_value()) {
        return {};
    }
    std::vector<ProcessIdentity> found = processesKeeping(joinAsText(data.path, homeLockName));
    const auto inFolder = processesKeeping(data.path);
    found.insert(found.end(), inFolder.begin(), inFolder.end());
    return found;
}

} // namespace

bool isCloneRunning(const InstanceRecord& record) {
    return isHomeInUse(record.config) || !runnersOf(record).empty();
}

StoppedClone stopClone(const InstanceRegistry& registry, const InstanceRecord& record,
                       const StopOptions& options) {
    using Case = StoppedClone::Case;
    const std::vector<ProcessIdentity> runners = runnersOf(record);
    const bool isHeld = isHomeInUse(record.config);
    TreeShutdown shutdown(runners, runners.empty() && isHeld ? orphansOf(registry, record)
                                                             : std::vector<ProcessIdentity>());
    if (shutdown.seen() == 0) {
        return {.outcome = isHeld ? Case::elsewhere : Case::notRunning};
    }
    shutdown.askToEnd(options.patience, options.cancelled);
    Case outcome = Case::ended;
    auto left = shutdown.running();
    const bool isCancelled = options.cancelled != nullptr && *options.cancelled;
    if (!left.empty() && !isCancelled && options.mayForce && options.mayForce(left.size())) {
        shutdown.kill();
        outcome = Case::forced;
        left = shutdown.running();
    }
    return {.outcome = left.empty() ? outcome : Case::running,
            .ended = shutdown.seen() - left.size(),
            .left = left.size()};
}

} // namespace quorvel

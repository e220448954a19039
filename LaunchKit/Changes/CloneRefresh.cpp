#include "LaunchKit/Changes/CloneRefresh.h"

#include "LaunchKit/Changes/CloneRevision.h"
#include "LaunchKit/Changes/ClonesLock.h"
#include "LaunchKit/Changes/RequestCheck.h"
#include "LaunchKit/RunnerLocator.h"
#include "LaunchKit/WrapperFactory.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/PlatformError.h"

namespace quorvel {
namespace {

constexpr std::size_t largestRunner = std::size_t{64} << 20U;

std::filesystem::path runnerOrLocated(const std::optional<std::filesystem::path>& runner) {
    auto found = runner ? runner : RunnerLocator::locate(ApplicationFolders::current());
    if (!found) {
        throw WrapperFactory::FactoryError::runnerNotFound();
    }
    return *found;
}

} // namespace

CloneRefresh::CloneRefresh(const std::optional<std::filesystem::path>& runner, bool isSelfContained)
    : runner_(runnerOrLocated(runner)),
      isSelfContained_(isSelfContained) {
    auto bytes = readFile(runner_, largestRunner);
    if (!bytes) {
        throw PlatformError::fromErrno(runner_, "read");
    }
    bytes_ = std::move(*bytes);
}

bool CloneRefresh::hasOldRunner(const std::filesystem::path& wrapper) const {
    return !hasContents(runnerOf(wrapper), bytes_);
}

// Tidying up looks at every name in the folder, so it is done once for all clones there.
CloneRevision CloneRefresh::revisionOf(const std::filesystem::path& wrapper) const {
    if (!tidied_.contains(realWrapper(wrapper).parent_path())) {
        CloneRevision revision(wrapper);
        tidied_.insert(revision.wrapper().parent_path());
        return revision;
    }
    try {
        return CloneRevision(wrapper, lockTidyClones);
    } catch (const InvalidRequest&) {
        throw;
    } catch (const Error&) {
        return CloneRevision(wrapper); // another change may have been interrupted since
    }
}

bool CloneRefresh::hasOldPrograms(const WrapperRevision& wrapper) const {
    return hasOldRunner(wrapper.wrapper()) || wrapper.hasOldHelpers(runner_) ||
           (isSelfContained_ && wrapper.hasOldParts(runner_));
}

std::vector<StaleReason> CloneRefresh::reasonsFor(const InstanceRecord& record) const {
    std::vector<StaleReason> reasons;
    const WrapperRevision wrapper(record.bundleURL);
    if (hasOldPrograms(wrapper)) {
        reasons.push_back(StaleReason::runner);
    }
    const CloneSettings& settings = wrapper.settings();
    if (completedSettings(wrapper, settings).config.extraArgs != settings.config.extraArgs) {
        reasons.push_back(StaleReason::arguments);
    }
    if (wrapper.hasOldTargetIcon()) {
        reasons.push_back(StaleReason::icon);
    }
    return reasons;
}

ChangedClone CloneRefresh::refresh(const std::filesystem::path& wrapper) const {
    const CloneRevision clone = revisionOf(wrapper);
    WrapperRevision::Changes changes;
    changes.settings = completedSettings(clone.old(), clone.old().settings());
    changes.refreshesIcon = true;
    changes.isSelfContained = isSelfContained_;
    if (hasOldPrograms(clone.old())) {
        changes.settings.runner = runner_;
    }
    if (!menu_) {
        menu_.emplace();
    }
    return clone.replace(changes, &*menu_);
}

} // namespace quorvel

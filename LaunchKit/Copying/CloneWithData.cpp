#include "LaunchKit/Copying/CloneWithData.h"

#include "LaunchKit/RunnerLocator.h"

namespace quorvel {
namespace fs = std::filesystem;

namespace {

// The factory itself would notice only after the copy.
void requireParts(const WrapperFactory& factory, const WrapperFactory::Request& request) {
    if (!factory.runnerBinary && !RunnerLocator::locate(ApplicationFolders::current())) {
        throw WrapperFactory::FactoryError::runnerNotFound();
    }
    if (request.kind == ShortcutKind::app) {
        (void)WrapperFactory::cloneableTarget(request);
    }
}

} // namespace

fs::path dataFolderFor(const WrapperFactory::Request& request) {
    const DataFolder folder = dataFolderOf(request);
    if (folder.isNone || folder.isBehindLink) {
        throw DataCopyError("The new clone has no data folder of its own to copy data to.");
    }
    return folder.path;
}

CloneWithData createCloneWithData(const WrapperFactory& factory,
                                  const WrapperFactory::Request& request,
                                  const RequestPermissions& permissions, const InitialData& initial,
                                  const WrapperFactory::Warning& warn) {
    // Checked before and after the copy, which may take long and must not keep others waiting.
    validateRequest(request, factory.runnerBinary, permissions);
    requireParts(factory, request);
    clearPlaceFor(request);
    CopiedData data(dataFolderFor(request), initial.parts, initial.copy);
    CloneWithData made{.data = data.report(), .findings = data.findings()};
    if (initial.found) {
        initial.found(made.findings);
    }
    data.complete(WrapperFactory::wrapperURL(request));
    try {
        made.clone = createCloneInClearPlace(factory, request, permissions, warn,
                                             [&](const fs::path& /*wrapper*/) { data.publish(); });
    } catch (...) {
        data.withdraw();
        throw;
    }
    data.finish();
    return made;
}

} // namespace quorvel

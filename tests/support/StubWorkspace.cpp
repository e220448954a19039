#include "tests/support/StubWorkspace.h"

#include <thread>
#include <utility>

namespace quorvel::testing {

void StubWorkspace::openApplication(const std::filesystem::path& bundle, bool activates,
                                    Completion completion) {
    if (throwsOpenError) {
        throw PlatformError(openError.value());
    }
    opened.push_back(bundle);
    activated = activates;
    if (completesOnThread) {
        std::thread([&] { completion(openError); }).join();
    } else {
        completion(openError);
    }
}

void StubWorkspace::reveal(const std::filesystem::path& item) {
    if (revealError) {
        throw PlatformError(*revealError);
    }
    revealed.push_back(item);
}

RunningApplications StubWorkspace::runningApplications() {
    ++snapshots;
    return RunningApplications(running);
}

void StubWorkspace::setRunning(const std::vector<std::string>& bundleIds) {
    running.clear();
    for (const std::string& bundleId : bundleIds) {
        running.push_back({.bundleId = bundleId, .bundleURL = "/x.app", .pid = 1});
    }
}

} // namespace quorvel::testing

#pragma once

#include "ProbeKit/AppProber.h"
#include "tests/support/AppBundles.h"
#include "tests/support/StubWorkspace.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace quorvel::testing {

/// An application with its own plan (see tests/helpers), everything that a prober needs to run it,
/// and the clean-up afterwards. Each wait of the probe lasts until the application has reported
/// that it is ready.
class Trial {
public:
    // Running applications are counted by identifier, and tests run in parallel.
    explicit Trial(std::string identifier = "com.example.Notes" + std::to_string(::getpid()))
        : bundleId(std::move(identifier)) {
        makeAppBundle(app, {{"CFBundleIdentifier", bundleId}}, QUORVEL_PROBE_TARGET);
        std::filesystem::create_directories(library);
        std::filesystem::create_directories(temporary);
    }

    /// What the application does, see tests/helpers.
    void plan(const std::string& steps) const { write(app / "Contents/Resources/plan", steps); }

    const std::string bundleId;

    ~Trial() { endAll(); }
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;

    [[nodiscard]] std::string reportStep() const { return "report " + reports.string(); }

    [[nodiscard]] AppProber::Dependencies dependencies() {
        AppProber::Dependencies with;
        with.workspace = workspace;
        with.realLibrary = library.string();
        with.temporary = temporary;
        with.sleep = [this](AppProber::Seconds time) { onSleep(time); };
        with.entitlements = noEntitlements;
        return with;
    }

    [[nodiscard]] AppProber prober() { return std::move(*AppProber::forApp(app, dependencies())); }

    /// Each wait is one call of `onSleep`.
    [[nodiscard]] AppProber::Options options() {
        AppProber::Options with;
        with.settleA = AppProber::Seconds(0.01);
        with.settleB = AppProber::Seconds(0.01);
        with.release = [this](TrialProcess trial) { released.push_back(std::move(trial)); };
        return with;
    }

    ProbeResult run() { return prober().run(options()); }

    /// Waits until the application has reported that many times.
    [[nodiscard]] bool hasReported(int times) const {
        return waitUntil(
            [&] {
                const std::string text = read(reports);
                return std::count(text.begin(), text.end(), '\n') >= times;
            },
            std::chrono::minutes(2));
    }

    void endAll() { terminateAndWait(std::exchange(released, {}), std::chrono::seconds(5)); }

    /// The throw-away homes.
    [[nodiscard]] std::vector<std::filesystem::path> homes() const {
        std::vector<std::filesystem::path> found;
        for (const auto& item : std::filesystem::directory_iterator(temporary)) {
            found.push_back(item.path());
        }
        return found;
    }

    TemporaryFolder folder{};
    std::filesystem::path app = folder / "Notes.app";
    std::filesystem::path library = folder / "Library";
    std::filesystem::path temporary = folder / "tmp";
    std::filesystem::path reports = folder / "reports";
    std::shared_ptr<Workspace> workspace = makeSystemWorkspace();
    std::vector<TrialProcess> released{};
    int sleeps = 0;
    std::function<void(AppProber::Seconds)> onSleep = [this](AppProber::Seconds /*time*/) {
        (void)hasReported(++sleeps);
    };
};

/// Returns whether this process has no children.
[[nodiscard]] inline bool hasNoChildren() {
    int status = 0;
    return ::waitpid(-1, &status, WNOHANG) == -1 && errno == ECHILD;
}

/// Returns the paths that a result has in a bucket.
[[nodiscard]] inline std::vector<std::string> bucketPaths(const ProbeResult& result,
                                                          LeakBucket bucket) {
    const auto paths = result.buckets.find(bucket);
    return paths == result.buckets.end() ? std::vector<std::string>{} : paths->second;
}

} // namespace quorvel::testing

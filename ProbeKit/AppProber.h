#pragma once

#include "Base/Error.h"
#include "LaunchKit/AppBundle.h"
#include "LaunchKit/InstanceLauncher.h"
#include "Platform/desktop/Workspace.h"
#include "Platform/processes/ProcessShutdown.h"
#include "ProbeKit/Models.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// A process that a probe launched.
using TrialProcess = IsolatedProcess;

/// A probe that was given up on request.
class ProbeCancelled : public Error {
public:
    ProbeCancelled() : Error("The detection was cancelled.") {}
};

/// Finds out by experiment where an app writes and whether it allows a second instance: launches it
/// twice, each time under a throw-away home (which stays), and records the writes. Made for one
/// target, run once.
class AppProber {
public:
    using Seconds = std::chrono::duration<double>;

    /// What the prober takes from the world. The defaults are the user's own.
    struct Surroundings {
        std::shared_ptr<Workspace> workspace{};           ///< null: the system's
        std::optional<std::string> realLibrary{};         ///< absent: "~/Library", expanded
        std::optional<std::filesystem::path> temporary{}; ///< absent: the system's
        std::function<void(Seconds)> sleep{};             ///< empty: blocks the thread
        EntitlementReader entitlements = codeSigningTool();
    };

    /// How a run reports and ends.
    struct Control {
        /// May be set by any thread or by a signal handler. Null: can't be cancelled.
        const std::atomic<bool>* cancelled = nullptr;
        /// The share of the waiting that is over, from 0 to 1, some twenty times a second, on the
        /// thread that runs the probe.
        std::function<void(double)> progress{};
        /// Takes over each launched process after it was asked to end. Empty: it is waited for in
        /// the background, and ended by force with all that it started when it still runs `grace`
        /// later (see `terminateAndWait`). A cancelled run waits for that itself before it throws.
        std::function<void(TrialProcess)> release{};
    };

    static constexpr std::chrono::seconds grace{5};

    /// Nothing when the bundle can't be read. Blocks while the code-signing tool runs.
    [[nodiscard]] static std::optional<AppProber> forApp(const std::filesystem::path& appURL);
    [[nodiscard]] static std::optional<AppProber> forApp(const std::filesystem::path& appURL,
                                                         Surroundings surroundings);

    Seconds settleA{7.0}; ///< the wait after the first launch
    Seconds settleB{2.0}; ///< the wait after the second

    [[nodiscard]] const AppBundle& bundle() const { return bundle_; }
    [[nodiscard]] const std::string& realLibrary() const { return realLibrary_; }

    /// Blocks for `settleA + settleB` and the launches. Throws `PlatformError` or
    /// `InstanceLauncher::LaunchError` when a throw-away home can't be made or a launch fails (a
    /// first process that runs by then goes on), and `ProbeCancelled`, with both processes asked
    /// to end, within a twentieth of a second of the request.
    [[nodiscard]] ProbeResult run();
    [[nodiscard]] ProbeResult run(const Control& control);

    /// Makes a new folder, "quorvel-probe-" and a UUID, and gives its path. Throws `PlatformError`.
    [[nodiscard]] std::string makeTempHome() const;

    /// Sorts the paths by where they lie; the first rule that applies wins.
    [[nodiscard]] LeakBuckets classify(const std::vector<WriteEvent>& events,
                                       const std::string& fakeHome) const;

    /// How the app took the launch of a second instance, `procB`.
    [[nodiscard]] SingletonTier classifySingleton(Process& procB) const;

    /// The recommendation, from the result's buckets and singleton tier alone.
    [[nodiscard]] static Strategy resolveStrategy(const ProbeResult& result);

private:
    AppProber(AppBundle bundle, Surroundings surroundings);

    [[nodiscard]] bool pathMentions(std::string_view path) const;
    [[nodiscard]] TrialProcess launch(const std::string& home) const;
    [[nodiscard]] LeakBucket bucketOf(const std::string& path, const std::string& fakeHome) const;

    AppBundle bundle_;
    std::string realLibrary_;
    std::filesystem::path temporary_;
    std::shared_ptr<Workspace> workspace_;
    std::function<void(Seconds)> sleep_;
    InstanceLauncher launcher_{};
};

} // namespace quorvel

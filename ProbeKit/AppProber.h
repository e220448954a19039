#pragma once

#include "Base/Error.h"
#include "LaunchKit/AppBundle.h"
#include "LaunchKit/InstanceLauncher.h"
#include "Platform/desktop/Workspace.h"
#include "Platform/shutdown/ProcessShutdown.h"
#include "ProbeKit/LeakRules.h"
#include "ProbeKit/Models.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorvel {

/// A process that a probe launched.
using TrialProcess = IsolatedProcess;

/// Thrown when a probe is cancelled.
class ProbeCancelled : public Error {
public:
    ProbeCancelled() : Error("The detection was cancelled.") {}
};

/// Finds out by experiment where an app writes and whether it allows a second instance: launches it
/// twice, each time with a temporary home (which is not removed), and records the writes. Writes of
/// other programs are told apart by their paths.
class AppProber {
public:
    using Seconds = std::chrono::duration<double>;

    /// External dependencies. The defaults are the user's own.
    struct Dependencies {
        std::shared_ptr<Workspace> workspace{};           ///< null: the system's
        std::optional<std::string> realLibrary{};         ///< absent: "~/Library", expanded
        std::optional<std::filesystem::path> temporary{}; ///< absent: the system's
        std::function<void(Seconds)> sleep{};             ///< empty: blocks the thread
        EntitlementReader entitlements = codeSigningTool();
    };

    /// How a run proceeds, reports and ends.
    struct Options {
        Seconds settleA{7.0}; ///< the wait after the first launch
        Seconds settleB{2.0}; ///< the wait after the second
        /// How much longer to wait at most for a copy that is still starting. Not for bundles.
        Seconds patience{10.0};
        /// Cancels the run once it is true. May be set by any thread or by a signal handler. Null:
        /// can't be cancelled.
        const std::atomic<bool>* cancelled = nullptr;
        /// Receives the elapsed share of the waiting, from 0 to 1, about twenty times a second, on
        /// the thread that runs the probe.
        std::function<void(double)> progress{};
        /// Takes over each launched process after it was asked to end. Empty: it is waited for in
        /// the background, and killed with everything that it started if it still runs `grace`
        /// later (see `terminateAndWait`). A cancelled run waits for that itself before it throws.
        std::function<void(TrialProcess)> release{};
    };

    static constexpr std::chrono::seconds grace{5};

    /// Returns `std::nullopt` if the bundle can't be read. Blocks while the code-signing tool runs.
    [[nodiscard]] static std::optional<AppProber> forApp(const std::filesystem::path& appURL);
    [[nodiscard]] static std::optional<AppProber> forApp(const std::filesystem::path& appURL,
                                                         Dependencies dependencies);

    [[nodiscard]] const AppBundle& bundle() const { return bundle_; }
    [[nodiscard]] const std::string& realLibrary() const { return rules_.realLibrary(); }

    /// Runs the probe and returns its result. Blocks for `settleA + settleB` and the launches; for
    /// an application that is not a bundle, longer if it takes longer to start, and for another
    /// start if the second copy handed over to the first (see `CopyTrial`). Throws `PlatformError`
    /// or `InstanceLauncher::LaunchError` if a throw-away home can't be made or a launch fails (a
    /// bundle's first process that was launched keeps running), and `ProbeCancelled`, with both
    /// processes asked to end, within a twentieth of a second of the request.
    [[nodiscard]] ProbeResult run() const;
    [[nodiscard]] ProbeResult run(const Options& options) const;

    /// Creates a folder named "quorvel-probe-" and a new UUID, and returns its path. Throws
    /// `PlatformError`.
    [[nodiscard]] std::string makeTempHome() const;

    /// Returns the events' paths, sorted into buckets as `LeakRules::bucketOf` says.
    [[nodiscard]] LeakBuckets classify(const std::vector<WriteEvent>& events,
                                       const std::string& fakeHome) const;

    /// Returns how the app reacted to the launch of its second instance, `procB`.
    [[nodiscard]] SingletonTier classifySingleton(Process& procB) const;

    /// Returns the strategy to recommend, from the result's buckets, singleton tier and environment
    /// alone.
    [[nodiscard]] static Strategy resolveStrategy(const ProbeResult& result);

private:
    AppProber(AppBundle bundle, Dependencies dependencies);

    using Homes = std::pair<std::string, std::string>;

    void launchCopies(const Homes& homes, const Options& options,
                      std::vector<TrialProcess>& launched, ProbeResult& result) const;
    [[nodiscard]] TrialProcess launch(const std::string& home,
                                      const std::map<std::string, std::string>& environment) const;

    AppBundle bundle_;
    LeakRules rules_;
    std::filesystem::path temporary_;
    std::shared_ptr<Workspace> workspace_;
    std::function<void(Seconds)> sleep_;
    InstanceLauncher launcher_{};
};

} // namespace quorvel

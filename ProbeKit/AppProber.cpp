#include "ProbeKit/AppProber.h"

#include "Base/PathText.h"
#include "Base/RandomUuid.h"
#include "LaunchKit/Targets/AppEngine.h"
#include "Platform/files/FileSystem.h"
#include "Platform/homes/IsolatedEnvironment.h"
#include "Platform/homes/UserPaths.h"
#include "Platform/shutdown/ProcessActivity.h"
#include "ProbeKit/CopyTrial.h"
#include "ProbeKit/FSEventProbe.h"

#include <algorithm>
#include <thread>

namespace quorvel {
namespace {

using Seconds = AppProber::Seconds;

// Short enough that cancelling feels immediate.
constexpr Seconds slice{0.05};

// Waits during a probe, reports its progress and notices when it is cancelled.
class Waiter {
public:
    Waiter(const AppProber::Options& options, const std::function<void(Seconds)>& sleep,
           Seconds whole)
        : options_(options),
          sleep_(sleep),
          whole_(whole) {}

    void wait(Seconds time) {
        throwIfCancelled();
        for (Seconds left = time; left.count() > 0; left -= slice) {
            const Seconds step = std::min(left, slice);
            sleep_(step);
            over_ += step;
            if (options_.progress) {
                options_.progress(std::min(1.0, over_ / whole_));
            }
            throwIfCancelled();
        }
    }

private:
    void throwIfCancelled() const {
        if (options_.cancelled != nullptr && options_.cancelled->load()) {
            throw ProbeCancelled();
        }
    }

    const AppProber::Options& options_;
    const std::function<void(Seconds)>& sleep_;
    Seconds whole_;
    Seconds over_{0};
};

// Asks the processes to end, in the order of their launch, and releases them.
void terminateAll(std::vector<TrialProcess>& trials,
                  const std::function<void(TrialProcess)>& release) {
    for (TrialProcess& trial : trials) {
        if (release) {
            trial.terminate();
            release(std::move(trial));
        } else {
            terminateInBackground(std::move(trial), AppProber::grace);
        }
    }
    trials.clear();
}

void abandon(std::vector<TrialProcess>& trials, const AppProber::Options& options) {
    if (options.release) {
        terminateAll(trials, options.release);
    } else {
        // The caller may quit now, which a background thread would not survive.
        terminateAndWait(std::exchange(trials, {}), AppProber::grace);
    }
}

} // namespace

std::optional<AppProber> AppProber::forApp(const std::filesystem::path& appURL) {
    return forApp(appURL, Dependencies{});
}

std::optional<AppProber> AppProber::forApp(const std::filesystem::path& appURL,
                                           Dependencies dependencies) {
    auto bundle = AppBundle::read(appURL, dependencies.entitlements);
    if (!bundle) {
        return std::nullopt;
    }
    return AppProber(std::move(*bundle), std::move(dependencies));
}

AppProber::AppProber(AppBundle bundle, Dependencies dependencies)
    : bundle_(std::move(bundle)),
      rules_(bundle_,
             withoutTrailingSlashes(dependencies.realLibrary ? *dependencies.realLibrary
                                                             : UserPaths::expandTilde("~/Library")),
             dataPlaces(UserPaths::home(), currentEnvironment())),
      temporary_(dependencies.temporary.value_or(UserPaths::temporaryFolder())),
      workspace_(dependencies.workspace ? std::move(dependencies.workspace)
                                        : makeSystemWorkspace()),
      sleep_(dependencies.sleep ? std::move(dependencies.sleep)
                                : [](Seconds time) { std::this_thread::sleep_for(time); }) {}

ProbeResult AppProber::run() const {
    return run(Options{});
}

ProbeResult AppProber::run(const Options& options) const {
    const std::string homeA = makeTempHome();
    const std::string homeB = makeTempHome();
    const std::optional<Settings> before = rules_.sharedSettings();
    FSEventProbe recorder(rules_.watchedFolders(homeA), [this, homeA](const std::string& folder) {
        return rules_.isOfInterest(folder, homeA);
    });
    recorder.start();

    std::vector<TrialProcess> launched;
    ProbeResult result;
    result.isInUse =
        bundle_.desktop && isRunningWithHome(bundle_.executableURL(), UserPaths::home());
    try {
        launchCopies({homeA, homeB}, options, launched, result);
    } catch (const ProbeCancelled&) {
        abandon(launched, options);
        throw;
    } catch (...) {
        if (bundle_.desktop) {
            abandon(launched, options);
        }
        for (TrialProcess& trial : launched) {
            trial.process.detach();
        }
        throw;
    }
    terminateAll(launched, options.release);
    result.buckets = classify(recorder.stopAndDrain(), homeA);
    rules_.setOthersSettingsAside(before, rules_.sharedSettings(), result.buckets);
    result.complete = recorder.isComplete();
    result.recommendedStrategy = resolveStrategy(result);
    return result;
}

void AppProber::launchCopies(const Homes& homes, const Options& options,
                             std::vector<TrialProcess>& launched, ProbeResult& result) const {
    Waiter waiter(options, sleep_, options.settleA + options.settleB);
    if (!bundle_.desktop) {
        launched.push_back(launch(homes.first, {}));
        waiter.wait(options.settleA);
        launched.push_back(launch(homes.second, {}));
        waiter.wait(options.settleB);
        result.singleton = classifySingleton(launched.back().process);
        return;
    }
    CopyTrial::Steps steps;
    steps.launch = [this](const std::string& home, const CopyTrial::Variables& variables) {
        return launch(home, variables);
    };
    steps.wait = [&waiter](Seconds time) { waiter.wait(time); };
    steps.homeA = homes.first;
    steps.homeB = homes.second;
    steps.settleA = options.settleA;
    steps.settleB = options.settleB;
    steps.patience = options.patience;
    CopyTrial trial(bundle_, std::move(steps), launched);
    trial.run();
    result.singleton = trial.singleton();
    result.environment = trial.environment();
}

TrialProcess AppProber::launch(const std::string& home,
                               const std::map<std::string, std::string>& environment) const {
    try {
        return {launcher_.launch(bundle_, home, Strategy::homeOverride,
                                 electronArgs(bundle_.url, home), environment),
                home};
    } catch (const Error&) {
        removeTemporaryFolder(home, currentEnvironment());
        throw;
    }
}

std::string AppProber::makeTempHome() const {
    const std::filesystem::path home = joinAsText(temporary_, "quorvel-probe-" + randomUuid());
    createDirectories(temporary_);
    createPrivateFolder(home);
    return home.string();
}

LeakBuckets AppProber::classify(const std::vector<WriteEvent>& events,
                                const std::string& fakeHome) const {
    LeakBuckets buckets;
    for (const WriteEvent& event : events) {
        buckets[rules_.bucketOf(event.path, fakeHome)].push_back(event.path);
    }
    return buckets;
}

SingletonTier AppProber::classifySingleton(Process& procB) const {
    if (bundle_.prohibitsMultipleInstances) {
        return SingletonTier::lsProhibited;
    }
    const std::size_t running =
        workspace_->runningApplications().withBundleIdentifier(bundle_.bundleId).size();
    return singletonTier(procB.isRunning(), running);
}

Strategy AppProber::resolveStrategy(const ProbeResult& result) {
    if (result.count(LeakBucket::containerLeak) > 0) {
        return Strategy::wrapperIdentity;
    }
    if (result.count(LeakBucket::dataLeak) > 0) {
        return Strategy::containerRedirect;
    }
    return result.singleton == SingletonTier::machPort && result.environment.empty()
               ? Strategy::unsupported
               : Strategy::homeOverride;
}

} // namespace quorvel

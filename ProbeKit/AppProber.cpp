#include "ProbeKit/AppProber.h"

#include "Base/PathText.h"
#include "Base/RandomUuid.h"
#include "Base/Text.h"
#include "LaunchKit/AppEngine.h"
#include "Platform/desktop/UserLocale.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/UserPaths.h"
#include "ProbeKit/FSEventProbe.h"

#include <algorithm>
#include <thread>

namespace quorvel {
namespace {

using Seconds = AppProber::Seconds;

// Short enough that cancelling feels immediate.
constexpr Seconds slice{0.05};

// Apps name their folders after the last component of their identifier, "Notes" for
// "com.example.Notes".
std::string_view lastComponent(std::string_view bundleId) {
    const std::size_t end = bundleId.find_last_not_of('.');
    if (end == bundleId.npos) {
        return bundleId;
    }
    const std::string_view trimmed = bundleId.substr(0, end + 1);
    const std::size_t dot = trimmed.rfind('.');
    return dot == trimmed.npos ? trimmed : trimmed.substr(dot + 1);
}

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
      realLibrary_(withoutTrailingSlashes(dependencies.realLibrary
                                              ? *dependencies.realLibrary
                                              : UserPaths::expandTilde("~/Library"))),
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
    FSEventProbe recorder({homeA, realLibrary_});
    recorder.start();

    Waiter waiter(options, sleep_, options.settleA + options.settleB);
    std::vector<TrialProcess> launched;
    ProbeResult result;
    launched.push_back(launch(homeA));
    try {
        waiter.wait(options.settleA);
        launched.push_back(launch(homeB));
        waiter.wait(options.settleB);
        result.singleton = classifySingleton(launched.back().process);
    } catch (const ProbeCancelled&) {
        if (options.release) {
            terminateAll(launched, options.release);
        } else {
            // The caller may quit now, which a background thread would not survive.
            terminateAndWait(std::move(launched), grace);
        }
        throw;
    } catch (...) {
        for (TrialProcess& trial : launched) {
            trial.process.detach();
        }
        throw;
    }
    terminateAll(launched, options.release);
    result.buckets = classify(recorder.stopAndDrain(), homeA);
    result.complete = recorder.isComplete();
    result.recommendedStrategy = resolveStrategy(result);
    return result;
}

TrialProcess AppProber::launch(const std::string& home) const {
    return {launcher_.launch(bundle_, home, Strategy::homeOverride, electronArgs(bundle_.url, home),
                             {}),
            home};
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
        buckets[bucketOf(event.path, fakeHome)].push_back(event.path);
    }
    return buckets;
}

LeakBucket AppProber::bucketOf(const std::string& path, const std::string& fakeHome) const {
    const auto below = [&](std::string_view folder) {
        return path.starts_with(realLibrary_) &&
               std::string_view(path).substr(realLibrary_.size()).starts_with(folder);
    };
    if (path.starts_with(fakeHome)) {
        return LeakBucket::captured;
    }
    if (below("/Containers/" + bundle_.bundleId)) {
        return LeakBucket::containerLeak;
    }
    if (below("/Preferences") && pathMentions(path)) {
        return LeakBucket::prefsLeak;
    }
    if (below("/Application Support") && pathMentions(path)) {
        return LeakBucket::dataLeak;
    }
    return LeakBucket::irrelevant;
}

bool AppProber::pathMentions(std::string_view path) const {
    const std::string locale = UserLocale::forCase();
    return Text::containsIgnoringCase(path, lastComponent(bundle_.bundleId), locale) ||
           Text::containsIgnoringCase(path, bundle_.bundleId, locale);
}

SingletonTier AppProber::classifySingleton(Process& procB) const {
    if (bundle_.prohibitsMultipleInstances) {
        return SingletonTier::lsProhibited;
    }
    const std::size_t running =
        workspace_->runningApplications().withBundleIdentifier(bundle_.bundleId).size();
    if (procB.isRunning()) {
        return running < 2 ? SingletonTier::lockFile : SingletonTier::none;
    }
    return running < 1 ? SingletonTier::unknown : SingletonTier::machPort;
}

Strategy AppProber::resolveStrategy(const ProbeResult& result) {
    if (result.count(LeakBucket::containerLeak) > 0) {
        return Strategy::wrapperIdentity;
    }
    if (result.count(LeakBucket::dataLeak) > 0) {
        return Strategy::containerRedirect;
    }
    return result.singleton == SingletonTier::machPort ? Strategy::unsupported
                                                       : Strategy::homeOverride;
}

} // namespace quorvel

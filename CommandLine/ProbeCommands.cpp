#include "CommandLine/ProbeCommands.h"

#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "CommandLine/ProbeTexts.h"
#include "LaunchKit/AppCatalog.h"
#include "Platform/processes/InterruptFlag.h"
#include "ProbeKit/AppProber.h"
#include "ProbeKit/ProfileGenerator.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <ostream>

namespace quorvel {
namespace {

template<typename Item>
void print(const Surroundings& with, const std::vector<Item>& items, bool json) {
    if (!json) {
        with.output << listing(items);
        return;
    }
    nlohmann::json array = nlohmann::json::array();
    for (const Item& item : items) {
        array.push_back(jsonForm(item));
    }
    with.output << document(array);
}

AppProber makeProber(const Surroundings& with, const std::string& app, const ProbeOptions& options,
                     const EntitlementReader& entitlements) {
    AppProber::Dependencies dependencies;
    // The workspace belongs to the caller, who keeps it longer than the prober lives.
    dependencies.workspace = {std::shared_ptr<void>(), &with.workspace};
    dependencies.entitlements = entitlements;
    if (options.realLibrary) {
        dependencies.realLibrary = absoluteFile(*options.realLibrary).string();
    }
    auto prober = AppProber::forApp(absoluteFile(app), std::move(dependencies));
    if (!prober) {
        throw CommandError(
            InstanceLauncher::LaunchError::badBundle(absoluteFile(app)).description());
    }
    return std::move(*prober);
}

// No process of the trial outlives the command.
class TrialProcesses {
public:
    TrialProcesses() = default;
    TrialProcesses(const TrialProcesses&) = delete;
    TrialProcesses& operator=(const TrialProcesses&) = delete;
    ~TrialProcesses() { terminateAndWait(std::move(trials_), AppProber::grace); }

    void take(TrialProcess trial) { trials_.push_back(std::move(trial)); }

private:
    std::vector<TrialProcess> trials_{};
};

AppProber::Options trialOptions(const ProbeOptions& options) {
    AppProber::Options trial;
    trial.settleA = AppProber::Seconds(options.settleA.value_or(trial.settleA.count()));
    trial.settleB = AppProber::Seconds(options.settleB.value_or(trial.settleB.count()));
    return trial;
}

ProbeResult runWithBar(const Surroundings& with, const AppProber& prober,
                       AppProber::Options options, InterruptFlag& interruption) {
    TrialProcesses processes;
    options.cancelled = &interruption.flag();
    options.release = [&](TrialProcess trial) { processes.take(std::move(trial)); };
    const bool hasBar = with.outputIsTerminal;
    if (hasBar) {
        options.progress = [&](double fraction) {
            with.errors << progressBar(fraction) << std::flush;
        };
    }
    const auto removeBar = [&] {
        if (hasBar) {
            with.errors << noProgressBar() << std::flush;
        }
    };
    try {
        ProbeResult result = prober.run(options);
        removeBar();
        return result;
    } catch (const std::runtime_error&) {
        removeBar();
        throw;
    }
}

} // namespace

void appsCommand(const Surroundings& with, const std::vector<std::string>& searchDirs, bool json,
                 const EntitlementReader& entitlements) {
    std::vector<std::filesystem::path> dirs;
    std::transform(searchDirs.begin(), searchDirs.end(), std::back_inserter(dirs), absoluteFile);
    print(with,
          AppCatalog::scan(dirs.empty() ? AppCatalog::defaultSearchDirs() : dirs, entitlements),
          json);
}

void runningCommand(const Surroundings& with, const std::optional<std::string>& bundleId,
                    bool json) {
    const RunningApplications running = with.workspace.runningApplications();
    print(with, bundleId ? running.withBundleIdentifier(*bundleId) : running.all(), json);
}

void probeCommand(const Surroundings& with, const std::string& app, const ProbeOptions& options,
                  bool json, const EntitlementReader& entitlements) {
    const AppProber prober = makeProber(with, app, options, entitlements);
    InterruptFlag interruption;
    ProbeResult result;
    try {
        result = runWithBar(with, prober, trialOptions(options), interruption);
    } catch (const ProbeCancelled&) {
        interruption.deliver();
        throw;
    }
    const AppProfile profile = ProfileGenerator::makeProfile(
        prober.bundle(), result, operatingSystemSignature(with.workspace.operatingSystemVersion()));
    with.output << (json ? document(jsonForm(profile, result)) : description(profile, result));
}

} // namespace quorvel

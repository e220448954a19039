#include "CommandLine/ProbeCommands.h"

#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "CommandLine/Interruption.h"
#include "CommandLine/ProbeTexts.h"
#include "LaunchKit/AppCatalog.h"
#include "ProbeKit/AppProber.h"
#include "ProbeKit/Farewell.h"
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
    AppProber::Surroundings surroundings;
    // The workspace belongs to the caller, who keeps it longer than the prober lives.
    surroundings.workspace = {std::shared_ptr<void>(), &with.workspace};
    surroundings.entitlements = entitlements;
    if (options.realLibrary) {
        surroundings.realLibrary = absoluteFile(*options.realLibrary).string();
    }
    auto prober = AppProber::forApp(absoluteFile(app), std::move(surroundings));
    if (!prober) {
        throw CommandError(
            InstanceLauncher::LaunchError::badBundle(absoluteFile(app)).description());
    }
    prober->settleA = AppProber::Seconds(options.settleA.value_or(prober->settleA.count()));
    prober->settleB = AppProber::Seconds(options.settleB.value_or(prober->settleB.count()));
    return std::move(*prober);
}

// Nothing that the trial started outlives the command.
class TrialProcesses {
public:
    TrialProcesses() = default;
    TrialProcesses(const TrialProcesses&) = delete;
    TrialProcesses& operator=(const TrialProcesses&) = delete;
    ~TrialProcesses() { waitForEnd(std::move(trials_), AppProber::grace); }

    void take(TrialProcess trial) { trials_.push_back(std::move(trial)); }

private:
    std::vector<TrialProcess> trials_{};
};

ProbeResult runWithBar(const Surroundings& with, AppProber& prober, Interruption& interruption) {
    TrialProcesses processes;
    AppProber::Control control;
    control.cancelled = &interruption.flag();
    control.release = [&](TrialProcess trial) { processes.take(std::move(trial)); };
    const bool hasBar = with.outputIsTerminal;
    if (hasBar) {
        control.progress = [&](double fraction) {
            with.errors << progressBar(fraction) << std::flush;
        };
    }
    const auto removeBar = [&] {
        if (hasBar) {
            with.errors << noProgressBar() << std::flush;
        }
    };
    try {
        ProbeResult result = prober.run(control);
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
    AppProber prober = makeProber(with, app, options, entitlements);
    Interruption interruption;
    ProbeResult result;
    try {
        result = runWithBar(with, prober, interruption);
    } catch (const ProbeCancelled&) {
        interruption.deliver();
        throw;
    }
    const AppProfile profile = ProfileGenerator::makeProfile(
        prober.bundle(), result, operatingSystemSignature(with.workspace.operatingSystemVersion()));
    with.output << (json ? document(jsonForm(profile, result)) : description(profile, result));
}

} // namespace quorvel

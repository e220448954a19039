#include "CommandLine/ProbeCommands.h"

#include "CommandLine/AppLookup.h"
#include "CommandLine/CloneTexts.h"
#include "CommandLine/PathWords.h"
#include "CommandLine/ProbeTexts.h"
#include "CommandLine/ProgressBar.h"
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
void print(const CommandContext& context, const std::vector<Item>& items, bool json) {
    if (!json) {
        context.output << listing(items);
        return;
    }
    nlohmann::json array = nlohmann::json::array();
    for (const Item& item : items) {
        array.push_back(jsonForm(item));
    }
    context.output << document(array);
}

AppProber makeProber(const CommandContext& context, const std::string& app,
                     const ProbeOptions& options, const EntitlementReader& entitlements) {
    AppProber::Dependencies dependencies;
    // The caller owns the workspace, which outlives the prober.
    dependencies.workspace = {std::shared_ptr<void>(), &context.workspace};
    dependencies.entitlements = entitlements;
    if (options.realLibrary) {
        dependencies.realLibrary = absoluteFile(*options.realLibrary).string();
    }
    const std::filesystem::path url = findApp(app);
    auto prober = AppProber::forApp(url, std::move(dependencies));
    if (!prober) {
        throw CommandError(InstanceLauncher::LaunchError::badBundle(url).description());
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

ProbeResult runWithBar(const CommandContext& context, const AppProber& prober,
                       AppProber::Options options, InterruptFlag& interruption) {
    TrialProcesses processes;
    options.cancelled = &interruption.flag();
    options.release = [&](TrialProcess trial) { processes.take(std::move(trial)); };
    ProgressBar bar(context);
    options.progress = [&](double fraction) { bar.show(fraction); };
    return prober.run(options);
}

} // namespace

void appsCommand(const CommandContext& context, const std::vector<std::string>& searchDirs,
                 bool json, const EntitlementReader& entitlements) {
    std::vector<std::filesystem::path> dirs;
    std::transform(searchDirs.begin(), searchDirs.end(), std::back_inserter(dirs), absoluteFile);
    print(context,
          dirs.empty() ? AppCatalog::scan(entitlements) : AppCatalog::scan(dirs, entitlements),
          json);
}

void runningCommand(const CommandContext& context, const std::optional<std::string>& bundleId,
                    bool json) {
    const RunningApplications running = context.workspace.runningApplications();
    print(context, bundleId ? running.withBundleIdentifier(*bundleId) : running.all(), json);
}

void probeCommand(const CommandContext& context, const std::string& app,
                  const ProbeOptions& options, bool json, const EntitlementReader& entitlements) {
    const AppProber prober = makeProber(context, app, options, entitlements);
    InterruptFlag interruption;
    ProbeResult result;
    try {
        result = runWithBar(context, prober, trialOptions(options), interruption);
    } catch (const ProbeCancelled&) {
        interruption.deliver();
        throw;
    }
    const AppProfile profile = ProfileGenerator::makeProfile(
        prober.bundle(), result,
        operatingSystemSignature(context.workspace.operatingSystemVersion()));
    context.output << (json ? document(jsonForm(profile, result)) : description(profile, result));
}

} // namespace quorvel

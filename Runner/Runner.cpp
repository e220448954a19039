#include "Runner/Runner.h"

#include "LaunchKit/DocumentHandover.h"
#include "LaunchKit/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/WindowNaming.h"
#include "LaunchKit/WindowWord.h"
#include "LaunchKit/WrapperLayout.h"
#include "LinkDoor/LinkAddress.h"
#include "LinkDoor/LinkSession.h"
#include "Platform/files/PlatformError.h"
#include "Platform/processes/ProcessAdoption.h"
#include "Platform/processes/SignalForwarder.h"
#include "Platform/processes/StartReport.h"
#include "Runner/RunnerMessages.h"
#include "Runner/WebClone.h"

#include <cstdlib>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

bool handedOver(const InstanceConfig& config, const std::vector<std::string>& documents,
                const StartDetails& details) {
    try {
        return handOver(config, documents, details);
    } catch (const std::runtime_error&) {
        return false;
    }
}

// A clone that links are sent to opens them, whatever else it was made for.
bool isLinkFromAClone(const std::vector<std::string>& arguments) {
    return std::getenv(linkHopsVariable) != nullptr && arguments.size() == 1 &&
           hasLinkScheme(arguments.front());
}

// Returns the action that the clone's menu entry asks for; empty if it asks for none.
std::string actionIn(const std::vector<std::string>& arguments) {
    return arguments.size() == 1 && arguments.front().starts_with(actionOption)
               ? arguments.front().substr(actionOption.size())
               : std::string();
}

int launchAndSupervise(const InstanceConfig& config, const std::vector<std::string>& documents,
                       StartDetails details, const StartReport& report,
                       const SignalForwarder& signals) {
    if (config.kind == ShortcutKind::app) {
        // What a file or a command opens is not part of the clone.
        adoptOrphans();
    }
    try {
        const std::optional<FileLock> lock =
            config.kind == ShortcutKind::app ? lockHome(config) : std::nullopt;
        details.kept = lock ? lock->descriptor() : -1;
        Process target = InstanceLauncher().launch(config, documents, details);
        report.started();
        std::optional<Process> naming = startWindowNaming(config, details.windowWord);
        return signals.waitUntilExit(target, naming ? &*naming : nullptr);
    } catch (const HomeInUse& error) {
        if (handedOver(config, documents, details)) {
            report.started();
            return 0;
        }
        addToLog(config, error.what());
        return failWith(report, error.what(), runnerHomeInUse);
    } catch (const InstanceLauncher::LaunchError& error) {
        // A refused launch must not write to the log that the launcher left empty.
        if (error.kind() != InstanceLauncher::LaunchError::Case::unsupported) {
            addToLog(config, error.what());
        }
        return failWith(report, error.what(), runnerCannotStart);
    } catch (const std::runtime_error& error) {
        if (config.kind != ShortcutKind::file) {
            addToLog(config, error.what());
        }
        return failWith(report, error.what(), runnerCannotStart);
    }
}

} // namespace

int runClone(const fs::path& executable, const std::vector<std::string>& arguments) {
    const StartReport report;
    const SignalForwarder signals;

    const fs::path wrapper = executable.parent_path().parent_path().parent_path();
    const fs::path file = configOf(wrapper);
    const std::optional<InstanceConfig> config = InstanceConfig::read(file);
    if (!config) {
        return failWith(report, "no readable configuration at " + file.string(), runnerBadConfig);
    }
    const StartDetails details{.windowWord = windowWord(cloneIdentity(wrapper)),
                               .action = actionIn(arguments)};
    const bool passesDocuments =
        details.action.empty() &&
        (config->openWithPassthrough || config->registerAsBrowser || isLinkFromAClone(arguments));
    const std::vector<std::string> documents =
        passesDocuments ? arguments : std::vector<std::string>{};
    if (config->kind == ShortcutKind::web) {
        // The host replaces the home that "~" stands for.
        InstanceConfig resolved = *config;
        resolved.instanceHome = config->resolvedHome();
        return runWebClone({resolved, file, details.windowWord, documents}, report, signals);
    }
    return launchAndSupervise(*config, documents, details, report, signals);
}

} // namespace quorvel

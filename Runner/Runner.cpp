#include "Runner/Runner.h"

#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/Launching/DocumentHandover.h"
#include "LaunchKit/Launching/LogRotation.h"
#include "LaunchKit/Launching/StatusItemStart.h"
#include "LaunchKit/Launching/WindowNaming.h"
#include "LaunchKit/Launching/WindowWord.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "LinkDoor/LinkAddress.h"
#include "LinkDoor/LinkSession.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/processes/FocusRequest.h"
#include "Platform/processes/StartReport.h"
#include "Platform/shutdown/ProcessAdoption.h"
#include "Platform/shutdown/SignalForwarder.h"
#include "Runner/RunnerMessages.h"
#include "Runner/WebClone.h"

#include <cstdlib>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

Handover handedOver(const InstanceConfig& config, const std::vector<std::string>& documents,
                    const StartDetails& details) {
    try {
        return handOver(config, documents, details);
    } catch (const std::runtime_error&) {
        return {};
    }
}

// A clone of any kind opens the links that are sent to it.
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

// What this process starts must not take the request for its own.
bool takeFocusRequest() {
    const bool isThere = std::getenv(focusVariable) != nullptr;
    ::unsetenv(focusVariable);
    return isThere;
}

// The desktop would have started the application once for each document.
void reportLeftOut(const InstanceConfig& config, std::size_t leftOut) {
    if (leftOut > 0) {
        addToLog(config, "documents that were left out, since the application takes one at a time "
                         "and runs once in a clone: " +
                             std::to_string(leftOut));
    }
}

// Starts the programs that serve the clone while it runs, and end with it.
std::vector<Process> companionsOf(const AppBundle* app, const InstanceConfig& config,
                                  const StartDetails& details) {
    std::vector<Process> companions;
    if (auto item = startStatusItem(config, details.identity)) {
        companions.push_back(std::move(*item));
    }
    if (auto naming = app ? startWindowNaming(*app, config, details.windowWord) : std::nullopt) {
        companions.push_back(std::move(*naming));
    }
    return companions;
}

// Launches the clone's application in a home that no other target uses, and waits for its end.
int superviseApp(const InstanceConfig& config, const std::vector<std::string>& documents,
                 StartDetails details, const StartReport& report, const SignalForwarder& signals) {
    const std::optional<FileLock> lock = lockHome(config);
    setAsideLargeLog(config.resolvedHome());
    details.kept = lock ? lock->descriptor() : -1;
    const AppBundle app = InstanceLauncher::targetOf(config);
    Process target = InstanceLauncher().launch(app, config, documents, details);
    report.started();
    reportLeftOut(config, app.desktop ? app.desktop->documentsLeftOut(documents.size()) : 0);
    return signals.waitUntilExit(target, companionsOf(&app, config, details));
}

// For a clone whose application runs already.
int handOverOrSupervise(const InstanceConfig& config, const std::vector<std::string>& documents,
                        const StartDetails& details, const HomeInUse& obstacle,
                        const StartReport& report, const SignalForwarder& signals) {
    Handover handover = handedOver(config, documents, details);
    if (handover.isTaken || handover.successor) {
        report.started();
        reportLeftOut(config, handover.leftOut);
        // It runs in the first one's place, whose companions have ended with its runner.
        return handover.successor ? signals.waitUntilExit(*handover.successor,
                                                          companionsOf(nullptr, config, details))
                                  : 0;
    }
    if (!details.onlyFocuses) {
        addToLog(config, obstacle.what());
    }
    return failWith(report, obstacle.what(), runnerHomeInUse);
}

// For a clone that runs already and is only to come to the front: nothing is launched beside it.
int focus(const InstanceConfig& config, const StartDetails& details, const StartReport& report,
          const SignalForwarder& signals) {
    const HomeInUse obstacle(config.displayName);
    if (config.kind != ShortcutKind::app || !isHomeInUse(config)) {
        return failWith(report, obstacle.what(), runnerHomeInUse);
    }
    adoptOrphans(); // if the application just ends, its successor is the clone
    return handOverOrSupervise(config, {}, details, obstacle, report, signals);
}

int launchAndSupervise(const InstanceConfig& config, const std::vector<std::string>& documents,
                       const StartDetails& details, const StartReport& report,
                       const SignalForwarder& signals) {
    try {
        if (config.kind == ShortcutKind::app) {
            // What a file or a command opens is not part of the clone.
            adoptOrphans();
            return superviseApp(config, documents, details, report, signals);
        }
        setAsideLargeLog(config.resolvedHome());
        Process target = InstanceLauncher().launch(config);
        report.started();
        // What a file clone opens lasts longer than the runner.
        return signals.waitUntilExit(target, config.kind == ShortcutKind::command
                                                 ? companionsOf(nullptr, config, details)
                                                 : std::vector<Process>{});
    } catch (const HomeInUse& error) {
        return handOverOrSupervise(config, documents, details, error, report, signals);
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
    const std::string identity = cloneIdentity(wrapper);
    const StartDetails details{.identity = identity,
                               .windowWord = windowWord(identity),
                               .action = actionIn(arguments),
                               .onlyFocuses = takeFocusRequest()};
    const bool passesDocuments =
        details.action.empty() &&
        (config->openWithPassthrough || config->registerAsBrowser || isLinkFromAClone(arguments));
    const std::vector<std::string> documents =
        passesDocuments ? arguments : std::vector<std::string>{};
    if (config->kind == ShortcutKind::web) {
        // The host replaces the home that "~" means.
        InstanceConfig resolved = *config;
        resolved.instanceHome = config->resolvedHome();
        return runWebClone({resolved, file, details.windowWord, documents}, report, signals);
    }
    const int status = details.onlyFocuses
                           ? focus(*config, details, report, signals)
                           : launchAndSupervise(*config, documents, details, report, signals);
    if (!itemOrLinkExists(identity)) {
        removeUnusedTemporaryFolder(*config); // the clone was deleted or renamed while it ran
    }
    return status;
}

} // namespace quorvel

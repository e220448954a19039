#include "Runner/Runner.h"

#include "Base/TerminalText.h"
#include "LaunchKit/DocumentHandover.h"
#include "LaunchKit/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/WindowNaming.h"
#include "LaunchKit/WindowWord.h"
#include "LaunchKit/WrapperLayout.h"
#include "LinkDoor/LinkAddress.h"
#include "LinkDoor/LinkSession.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/processes/ProcessAdoption.h"
#include "Platform/processes/SignalForwarder.h"
#include "Platform/processes/StartReport.h"

#include <cstdio>
#include <cstdlib>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::string lineOf(const std::string& message) {
    return "quorvel-runner: " + terminalText(message) + "\n";
}

int fail(const StartReport& report, const std::string& message, RunnerStatus status) {
    std::fputs(lineOf(message).c_str(), stderr);
    report.failed(message);
    return status;
}

// Nobody sees the standard error of a program that the desktop opened.
void addToLog(const InstanceConfig& config, const std::string& message) {
    const std::string home = config.resolvedHome();
    try {
        createDirectories(home);
    } catch (const PlatformError&) {
        return;
    }
    if (const auto log = InstanceLauncher::instanceLogHandle(home)) {
        log->write(lineOf(message));
    }
}

bool handedOver(const InstanceConfig& config, const std::vector<std::string>& documents,
                const StartDetails& details) {
    try {
        return handOver(config, documents, details);
    } catch (const std::runtime_error&) {
        return false;
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

int launchAndSupervise(const InstanceConfig& config, const std::vector<std::string>& documents,
                       StartDetails details, const StartReport& report,
                       const SignalForwarder& signals) {
    if (config.kind == ShortcutKind::web) {
        const std::string message =
            "the web host for “" + config.displayName + "” is not installed";
        addToLog(config, message);
        return fail(report, message, runnerUnavailable);
    }
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
        return fail(report, error.what(), runnerHomeInUse);
    } catch (const InstanceLauncher::LaunchError& error) {
        // A refused launch must not write to the log that the launcher left empty.
        if (error.kind() != InstanceLauncher::LaunchError::Case::unsupported) {
            addToLog(config, error.what());
        }
        return fail(report, error.what(), runnerCannotStart);
    } catch (const std::runtime_error& error) {
        if (config.kind != ShortcutKind::file) {
            addToLog(config, error.what());
        }
        return fail(report, error.what(), runnerCannotStart);
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
        return fail(report, "no readable configuration at " + file.string(), runnerBadConfig);
    }
    const StartDetails details{.windowWord = windowWord(cloneIdentity(wrapper)),
                               .action = actionIn(arguments)};
    const bool passesDocuments =
        details.action.empty() &&
        (config->openWithPassthrough || config->registerAsBrowser || isLinkFromAClone(arguments));
    return launchAndSupervise(*config, passesDocuments ? arguments : std::vector<std::string>{},
                              details, report, signals);
}

} // namespace quorvel

#include "Runner/Runner.h"

#include "Base/TerminalText.h"
#include "LaunchKit/DocumentHandover.h"
#include "LaunchKit/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/WrapperLayout.h"
#include "LinkDoor/LinkAddress.h"
#include "LinkDoor/LinkSession.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
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

bool handedOver(const InstanceConfig& config, const std::vector<std::string>& documents) {
    try {
        return handOver(config, documents);
    } catch (const std::runtime_error&) {
        return false;
    }
}

// A clone that links are sent to opens them, whatever else it was made for.
bool isLinkFromAClone(const std::vector<std::string>& arguments) {
    return std::getenv(linkHopsVariable) != nullptr && arguments.size() == 1 &&
           hasLinkScheme(arguments.front());
}

int launchAndSupervise(const InstanceConfig& config, const std::vector<std::string>& documents,
                       const StartReport& report, const SignalForwarder& signals) {
    if (config.kind == ShortcutKind::web) {
        const std::string message =
            "the web host for “" + config.displayName + "” is not installed";
        addToLog(config, message);
        return fail(report, message, runnerUnavailable);
    }
    try {
        const std::optional<FileLock> lock =
            config.kind == ShortcutKind::app ? lockHome(config) : std::nullopt;
        Process target =
            InstanceLauncher().launch(config, documents, lock ? lock->descriptor() : -1);
        report.started();
        return signals.waitUntilExit(target);
    } catch (const HomeInUse& error) {
        if (handedOver(config, documents)) {
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
    const bool passesDocuments =
        config->openWithPassthrough || config->registerAsBrowser || isLinkFromAClone(arguments);
    return launchAndSupervise(*config, passesDocuments ? arguments : std::vector<std::string>{},
                              report, signals);
}

} // namespace quorvel

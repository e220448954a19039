#include "Runner/Runner.h"

#include "Base/TerminalText.h"
#include "LaunchKit/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/StartReport.h"

#include <csignal>
#include <cstdio>
#include <pthread.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

sigset_t handledSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGCHLD}) {
        sigaddset(&signals, signal);
    }
    return signals;
}

std::string lineOf(const std::string& message) {
    return "quorvel-runner: " + terminalText(message) + "\n";
}

int fail(const StartReport& report, const std::string& message, RunnerStatus status) {
    std::fputs(lineOf(message).c_str(), stderr);
    report.failed(message);
    return status;
}

// Opened from a desktop, nobody sees standard error: the log is where a user looks.
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

// The signals are blocked, so none is lost between the target's start and the wait for them.
int superviseUntilExit(Process& target, const sigset_t& signals) {
    while (target.isRunning()) {
        int signal = 0;
        sigwait(&signals, &signal);
        if (signal != SIGCHLD) {
            target.sendSignal(signal);
        }
    }
    return target.waitUntilExit();
}

int launchAndSupervise(const InstanceConfig& config, const std::vector<std::string>& documents,
                       const StartReport& report, const sigset_t& signals) {
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
        return superviseUntilExit(target, signals);
    } catch (const HomeInUse& error) {
        addToLog(config, error.what());
        return fail(report, error.what(), runnerHomeInUse);
    } catch (const InstanceLauncher::LaunchError& error) {
        // A launch that was refused leaves what the launcher left: an empty log, or no folder.
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
    // An ignored SIGCHLD, inherited from whoever started us, would take the exit status with it.
    // Without a handler, some systems drop the signal even while somebody waits for it.
    std::signal(SIGCHLD, [](int) {});
    const StartReport report;
    const sigset_t signals = handledSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    const fs::path wrapper = executable.parent_path().parent_path().parent_path();
    const fs::path file = wrapper / "Contents" / "Resources" / "instance.json";
    const std::optional<InstanceConfig> config = InstanceConfig::read(file);
    if (!config) {
        return fail(report, "no readable configuration at " + file.string(), runnerBadConfig);
    }
    const bool passesDocuments = config->openWithPassthrough || config->registerAsBrowser;
    return launchAndSupervise(*config, passesDocuments ? arguments : std::vector<std::string>{},
                              report, signals);
}

} // namespace quorvel

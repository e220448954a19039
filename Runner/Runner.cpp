#include "Runner/Runner.h"

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"
#include "Platform/FileSystem.h"
#include "Platform/TerminalText.h"

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

int fail(const std::string& message, RunnerStatus status, const InstanceConfig* config = nullptr) {
    const std::string line = "quorvel-runner: " + terminalText(message) + "\n";
    std::fputs(line.c_str(), stderr);
    if (config != nullptr) {
        // Opened from a desktop, nobody sees standard error: the log is where a user looks.
        const std::string home = config->resolvedHome();
        try {
            createDirectories(home);
        } catch (const PlatformError&) {
            return status;
        }
        if (const auto log = InstanceLauncher::instanceLogHandle(home)) {
            log->write(line);
        }
    }
    return status;
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

} // namespace

int runClone(const fs::path& executable, const std::vector<std::string>& arguments) {
    // An ignored SIGCHLD, inherited from whoever started us, would take the exit status with it.
    // Without a handler, some systems drop the signal even while somebody waits for it.
    std::signal(SIGCHLD, [](int) {});
    const sigset_t signals = handledSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    const fs::path wrapper = executable.parent_path().parent_path().parent_path();
    const fs::path file = wrapper / "Contents" / "Resources" / "instance.json";
    const std::optional<InstanceConfig> config = InstanceConfig::read(file);
    if (!config) {
        return fail("no readable configuration at " + file.string(), runnerBadConfig);
    }
    if (config->kind == ShortcutKind::web) {
        return fail("the web host for “" + config->displayName + "” is not installed",
                    runnerUnavailable, &*config);
    }
    const bool passesDocuments = config->openWithPassthrough || config->registerAsBrowser;
    try {
        Process target = InstanceLauncher().launch(
            *config, passesDocuments ? arguments : std::vector<std::string>{});
        return superviseUntilExit(target, signals);
    } catch (const std::runtime_error& error) {
        return fail(error.what(), runnerCannotStart, &*config);
    }
}

} // namespace quorvel

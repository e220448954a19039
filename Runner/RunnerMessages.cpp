#include "Runner/RunnerMessages.h"

#include "Base/TerminalText.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"

#include <cstdio>

namespace quorvel {
namespace {

std::string lineOf(const std::string& message) {
    return "quorvel-runner: " + terminalText(message) + "\n";
}

} // namespace

int failWith(const StartReport& report, const std::string& message, RunnerStatus status) {
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

} // namespace quorvel

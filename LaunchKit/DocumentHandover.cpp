#include "LaunchKit/DocumentHandover.h"

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"

#include <chrono>
#include <thread>

namespace quorvel {
namespace {

constexpr std::chrono::seconds longest{15};

// Any other second start would be a second application in one home.
bool passesOnWhatItIsGiven(const InstanceConfig& config) {
    if (config.kind != ShortcutKind::app) {
        return false;
    }
    const auto app = AppBundle::read(config.targetAppURL(), noEntitlements);
    if (!app || !app->desktop) {
        return false;
    }
    switch (app->desktop->program.engine) {
    case ResolvedProgram::Engine::chromium:
    case ResolvedProgram::Engine::electron:
    case ResolvedProgram::Engine::firefox:
        return true;
    default:
        return false;
    }
}

bool endsInTime(Process& process) {
    const auto limit = std::chrono::steady_clock::now() + longest;
    while (process.isRunning()) {
        if (std::chrono::steady_clock::now() > limit) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return process.waitUntilExit() == 0;
}

} // namespace

bool handOver(const InstanceConfig& config, const std::vector<std::string>& documents) {
    if (documents.empty() || !passesOnWhatItIsGiven(config)) {
        return false;
    }
    Process second = InstanceLauncher().launch(config, documents);
    if (endsInTime(second)) {
        return true;
    }
    second.terminate();
    return false;
}

} // namespace quorvel

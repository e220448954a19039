#include "LaunchKit/DocumentHandover.h"

#include "LaunchKit/InstanceConfig.h"

#include <chrono>

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

} // namespace

bool handOver(const InstanceConfig& config, const std::vector<std::string>& documents,
              const StartDetails& details) {
    if ((documents.empty() && details.action.empty()) || !passesOnWhatItIsGiven(config)) {
        return false;
    }
    Process second = InstanceLauncher().launch(config, documents, details);
    if (second.waitUntilExit(longest) == 0) {
        return true;
    }
    second.terminate();
    return false;
}

} // namespace quorvel

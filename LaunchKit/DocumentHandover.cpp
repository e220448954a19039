#include "LaunchKit/DocumentHandover.h"

#include "LaunchKit/InstanceConfig.h"

#include <chrono>

namespace quorvel {
namespace {

constexpr std::chrono::seconds longest{15};
constexpr std::chrono::milliseconds period{100};

// Any other second start would be a second application in one home.
bool passesOnWhatItIsGiven(const AppBundle& app) {
    if (!app.desktop) {
        return false;
    }
    switch (app.desktop->program.engine) {
    case ResolvedProgram::Engine::chromium:
    case ResolvedProgram::Engine::electron:
    case ResolvedProgram::Engine::firefox:
        return true;
    default:
        return false;
    }
}

} // namespace

Handover handOver(const InstanceConfig& config, const std::vector<std::string>& documents,
                  const StartDetails& details) {
    if (config.kind != ShortcutKind::app || (documents.empty() && details.action.empty())) {
        return {};
    }
    const AppBundle app = InstanceLauncher::targetOf(config);
    if (!passesOnWhatItIsGiven(app)) {
        return {};
    }
    std::optional<PendingHomeLock> claim = PendingHomeLock::of(config);
    StartDetails start = details;
    start.kept = claim ? claim->descriptor() : -1;
    Process second = InstanceLauncher().launch(app, config, documents, start);
    const auto end = std::chrono::steady_clock::now() + longest;
    while (std::chrono::steady_clock::now() < end) {
        if (const auto status = second.waitUntilExit(period)) {
            return {.isTaken = status == 0};
        }
        // The first one was ending when the second was started.
        if (claim && claim->tryTake()) {
            return {.successor = std::move(second), .claim = std::move(claim)};
        }
    }
    second.terminate();
    return {};
}

} // namespace quorvel

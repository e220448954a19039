#include "LaunchKit/Launching/DocumentHandover.h"

#include "LaunchKit/InstanceConfig.h"

#include <chrono>
#include <csignal>

namespace quorvel {
namespace {

constexpr std::chrono::seconds longest{15};
// For one that is asked to end.
constexpr std::chrono::seconds grace{2};
// While the home is free, another start could take it.
constexpr std::chrono::milliseconds period{5};

// Any other second start would be a second application in one home.
bool passesOnWhatItIsGiven(const AppBundle& app) {
    return app.desktop && isBrowserEngine(app.desktop->program.engine);
}

// Returns what each start is given: everything, or one document where it takes no more.
std::vector<std::vector<std::string>> partsOf(const std::vector<std::string>& documents,
                                              const DesktopTarget& target) {
    if (target.documentsLeftOut(documents.size()) == 0) {
        return {documents};
    }
    std::vector<std::vector<std::string>> parts;
    parts.reserve(documents.size());
    for (const std::string& document : documents) {
        parts.push_back({document});
    }
    return parts;
}

// These never run twice in one home, and show a new window when they are started again.
bool comesToFront(const AppBundle& app) {
    using Engine = ResolvedProgram::Engine;
    return app.desktop && (app.desktop->program.engine == Engine::chromium ||
                           app.desktop->program.engine == Engine::firefox);
}

Handover handOverPart(const AppBundle& app, const InstanceConfig& config,
                      const std::vector<std::string>& documents, const StartDetails& details) {
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
    if (!second.waitUntilExit(grace)) {
        second.sendSignal(SIGKILL); // or it would go on in the first one's home
        second.waitUntilExit();
    }
    return {};
}

// Returns std::nullopt if it was not taken.
std::optional<Handover> handedOverNext(const AppBundle& app, const InstanceConfig& config,
                                       const std::vector<std::string>& documents,
                                       const StartDetails& details) {
    try {
        Handover next = handOverPart(app, config, documents, details);
        return next.isTaken || next.successor ? std::optional(std::move(next)) : std::nullopt;
    } catch (const Error&) {
        return std::nullopt;
    }
}

} // namespace

Handover handOver(const InstanceConfig& config, const std::vector<std::string>& documents,
                  const StartDetails& details) {
    const bool isEmpty = documents.empty() && details.action.empty() && !details.onlyFocuses;
    if (config.kind != ShortcutKind::app || isEmpty) {
        return {};
    }
    const AppBundle app = InstanceLauncher::targetOf(config);
    if (details.onlyFocuses ? !comesToFront(app) : !passesOnWhatItIsGiven(app)) {
        return {};
    }
    const auto parts = partsOf(documents, *app.desktop);
    Handover handover = handOverPart(app, config, parts.front(), details);
    handover.leftOut = parts.size() - 1;
    while (handover.isTaken && handover.leftOut > 0) {
        const auto& part = parts[parts.size() - handover.leftOut];
        auto next = handedOverNext(app, config, part, details);
        if (!next) {
            return handover; // what was taken before is not asked for again
        }
        next->leftOut = handover.leftOut - 1;
        handover = std::move(*next);
    }
    return handover;
}

} // namespace quorvel

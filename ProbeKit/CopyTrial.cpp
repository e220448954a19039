#include "ProbeKit/CopyTrial.h"

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/Targets/NoSessionBus.h"

#include <utility>

namespace quorvel {
namespace {

const CopyTrial::Variables& withoutBus() {
    static const CopyTrial::Variables variables{{sessionBusVariable, noSessionBus}};
    return variables;
}

} // namespace

CopyTrial::CopyTrial(const AppBundle& app, Steps steps, std::vector<IsolatedProcess>& copies)
    : app_(app),
      steps_(std::move(steps)),
      copies_(copies) {}

void CopyTrial::run() {
    Variables variables;
    std::size_t first = start(steps_.homeA, variables, steps_.settleA);
    if (stateOf(first) == State::handedOver) {
        // Perhaps to a copy that was running before, such as the user's own.
        variables = withoutBus();
        first = start(steps_.homeA, variables, steps_.settleA);
    }
    const std::size_t second = start(steps_.homeB, variables, steps_.settleB);
    singleton_ = tier(first, second);
    if (!variables.empty()) {
        if (singleton_ == SingletonTier::none) {
            singleton_ = SingletonTier::machPort;
            environment_ = variables;
        }
    } else if (isUp(first) && stateOf(second) == State::handedOver) {
        const std::size_t third = start(steps_.homeB, withoutBus(), steps_.settleB);
        if (isUp(first) && isUp(third)) {
            environment_ = withoutBus();
        }
    }
}

std::size_t CopyTrial::start(const std::string& home, const Variables& variables, Seconds settle) {
    copies_.push_back(steps_.launch(home, variables));
    const std::size_t copy = copies_.size() - 1;
    steps_.wait(settle);
    waitWhileStarting(copy);
    return copy;
}

// A copy that is still starting has not yet looked for another one. One that is up, or that waits
// for a lock, hardly uses the processor.
void CopyTrial::waitWhileStarting(std::size_t copy) {
    constexpr Seconds period{0.5};
    constexpr double idleShare = 0.1;
    Process& process = copies_[copy].process;
    ProcessActivity before = steps_.activity(process.identifier());
    for (Seconds waited{0}; waited < steps_.patience && process.isRunning(); waited += period) {
        steps_.wait(period);
        const ProcessActivity now = steps_.activity(process.identifier());
        const bool isIdle = now.cpuTime - before.cpuTime < period * idleShare;
        if (isIdle && !now.wantsToRun) {
            return;
        }
        before = now;
    }
}

CopyTrial::State CopyTrial::stateOf(std::size_t copy) {
    IsolatedProcess& started = copies_[copy];
    if (started.process.isRunning()) {
        return steps_.activity(started.process.identifier()).waitsForLock ? State::waitsForLock
                                                                          : State::up;
    }
    if (isRunningWithHome(app_.executableURL(), started.home)) {
        return State::up; // it goes on in another process
    }
    return started.process.waitUntilExit() == 0 ? State::handedOver : State::failed;
}

SingletonTier CopyTrial::tier(std::size_t first, std::size_t second) {
    const State state = stateOf(second);
    const bool isRunning = state == State::up || state == State::waitsForLock;
    const std::size_t up = (isUp(first) ? 1U : 0U) + (state == State::up ? 1U : 0U);
    return singletonTier(isRunning, up);
}

SingletonTier singletonTier(bool secondIsRunning, std::size_t running) {
    if (secondIsRunning) {
        return running < 2 ? SingletonTier::lockFile : SingletonTier::none;
    }
    return running < 1 ? SingletonTier::unknown : SingletonTier::machPort;
}

} // namespace quorvel

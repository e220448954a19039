#include "Platform/shutdown/TreeShutdown.h"

#include "Platform/processes/Process.h"

#include <algorithm>
#include <csignal>
#include <iterator>
#include <thread>
#include <utility>

namespace quorvel {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds nap{20};

// Without a runner to compare with, a process with this program's HOME is the user's, unless the
// clone has that HOME, too.
bool hasLeftOrphan(pid_t process, pid_t orphan) {
    return hasLeftClone(process, ownPid()) && !hasLeftClone(orphan, ownPid());
}

// Its number may meanwhile belong to another process.
void send(int signal, const ProcessIdentity& process) {
    if (isRunning(process)) {
        ::kill(process.pid, signal);
    }
}

} // namespace

TreeShutdown::TreeShutdown(std::vector<ProcessIdentity> runners,
                           std::vector<ProcessIdentity> others)
    : runners_(std::move(runners)),
      others_(std::move(others)) {
    known_.insert(runners_.begin(), runners_.end());
    known_.insert(others_.begin(), others_.end());
    refresh();
}

void TreeShutdown::refreshBelow(const ProcessIdentity& runner) {
    const auto found = cloneProcesses(runner.pid);
    const std::set<ProcessIdentity> below(found.begin(), found.end());
    // A process that opened a link may have become the user's browser. One that the runner has
    // adopted looks the same if it has always had the runner's HOME, but is the clone's.
    std::erase_if(known_, [&](const ProcessIdentity& process) {
        return !below.contains(process) && !withRunnersHome_.contains(process) &&
               hasLeftClone(process.pid, runner.pid);
    });
    for (const ProcessIdentity& process : below) {
        if (known_.insert(process).second && haveSameHome(process.pid, runner.pid)) {
            withRunnersHome_.insert(process);
        }
    }
}

void TreeShutdown::refresh() {
    for (const ProcessIdentity& runner : runners_) {
        if (isRunning(runner)) {
            refreshBelow(runner);
        }
    }
    for (const ProcessIdentity& other : others_) {
        if (isRunning(other)) {
            const auto below = descendantsOf(
                other.pid, [&](pid_t process) { return hasLeftOrphan(process, other.pid); });
            known_.insert(below.begin(), below.end());
        }
    }
}

std::vector<ProcessIdentity> TreeShutdown::running() {
    refresh();
    std::vector<ProcessIdentity> found;
    // This program may run in a terminal of the clone, and must not end itself.
    std::copy_if(known_.begin(), known_.end(), std::back_inserter(found),
                 [](const ProcessIdentity& process) {
                     return process.pid != ownPid() && isRunning(process);
                 });
    return found;
}

bool TreeShutdown::anyMainRuns() const {
    return std::any_of(runners_.begin(), runners_.end(), isRunning) ||
           std::any_of(others_.begin(), others_.end(), isRunning);
}

void TreeShutdown::askToEnd(std::chrono::milliseconds patience,
                            const std::atomic<bool>* cancelled) {
    const auto end = Clock::now() + patience;
    std::set<ProcessIdentity> asked;
    const auto ask = [&](const ProcessIdentity& process) {
        if (asked.insert(process).second) {
            send(SIGTERM, process);
        }
    };
    std::for_each(runners_.begin(), runners_.end(), ask);
    std::for_each(others_.begin(), others_.end(), ask);
    const auto isOver = [&] { return Clock::now() >= end || (cancelled != nullptr && *cancelled); };
    for (auto left = running(); !left.empty() && !isOver(); left = running()) {
        // A browser's helpers end by themselves, and better so.
        if (!anyMainRuns()) {
            std::for_each(left.begin(), left.end(), ask);
        }
        std::this_thread::sleep_for(nap);
    }
}

void TreeShutdown::kill() {
    // A process may fork while the list is made; its child is found in the next round. The runners
    // are the last: they keep what detaches itself where it is found.
    constexpr int rounds = 50;
    const std::set<ProcessIdentity> last(runners_.begin(), runners_.end());
    for (int round = 0; round < rounds; ++round) {
        const auto left = running();
        if (left.empty()) {
            return;
        }
        for (const ProcessIdentity& process : left) {
            if (round >= rounds / 2 || !last.contains(process)) {
                send(SIGKILL, process);
            }
        }
        std::this_thread::sleep_for(nap);
    }
}

} // namespace quorvel

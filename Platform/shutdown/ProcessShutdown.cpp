#include "Platform/shutdown/ProcessShutdown.h"

#include "Platform/homes/IsolatedEnvironment.h"

#include <algorithm>
#include <csignal>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

namespace quorvel {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds nap{20};
constexpr milliseconds leastPatience{1000};

// The processes that the roots started, even if they are no longer descendants.
class StartedProcesses {
public:
    explicit StartedProcesses(const std::vector<IsolatedProcess>& roots) {
        for (const IsolatedProcess& root : roots) {
            homes_.insert(root.home);
            roots_.insert(root.process.identifier());
            known_.insert(root.descendants.begin(), root.descendants.end());
        }
    }

    // Returns those that are running, without the roots.
    [[nodiscard]] std::vector<ProcessIdentity> running() {
        for (const std::string& home : homes_) {
            for (const ProcessIdentity& process : processesWithHome(home)) {
                known_.insert(process);
            }
        }
        std::vector<ProcessIdentity> found;
        std::copy_if(known_.begin(), known_.end(), std::back_inserter(found),
                     [this](const ProcessIdentity& process) {
                         return !roots_.contains(process.pid) && isRunning(process);
                     });
        return found;
    }

    [[nodiscard]] const std::set<std::string>& homes() const { return homes_; }

private:
    std::set<std::string> homes_{};
    std::set<pid_t> roots_{};
    std::set<ProcessIdentity> known_{};
};

// Asks each process once.
void askToEnd(const std::vector<ProcessIdentity>& processes, std::set<ProcessIdentity>& asked) {
    for (const ProcessIdentity& process : processes) {
        if (asked.insert(process).second) {
            ::kill(process.pid, SIGTERM);
        }
    }
}

void killAll(std::vector<IsolatedProcess>& roots, StartedProcesses& started) {
    for (IsolatedProcess& root : roots) {
        root.process.sendSignal(SIGKILL);
    }
    // A process may fork while the list is made; its child is found in the next round.
    constexpr int rounds = 50;
    for (int round = 0; round < rounds; ++round) {
        const std::vector<ProcessIdentity> left = started.running();
        if (left.empty()) {
            break;
        }
        for (const ProcessIdentity& process : left) {
            ::kill(process.pid, SIGKILL);
        }
        std::this_thread::sleep_for(nap);
    }
    for (IsolatedProcess& root : roots) {
        root.process.waitUntilExit();
    }
}

} // namespace

// Once it has ended, its descendants are found by their HOME only.
void IsolatedProcess::terminate() {
    if (std::exchange(isTerminating, true)) {
        return;
    }
    descendants = descendantsOf(process.identifier());
    process.terminate();
}

void terminateAndWait(std::vector<IsolatedProcess> processes, milliseconds grace) {
    for (IsolatedProcess& process : processes) {
        process.terminate();
    }
    const auto end = Clock::now() + grace;
    StartedProcesses started(processes);
    const auto isRunning = [](IsolatedProcess& one) { return one.process.isRunning(); };
    while (std::any_of(processes.begin(), processes.end(), isRunning) && Clock::now() < end) {
        std::this_thread::sleep_for(nap);
    }
    std::set<ProcessIdentity> asked;
    const auto last = std::max(end, Clock::now() + leastPatience);
    for (auto left = started.running(); !left.empty() && Clock::now() < last;
         left = started.running()) {
        askToEnd(left, asked);
        std::this_thread::sleep_for(nap);
    }
    killAll(processes, started);
    for (const std::string& home : started.homes()) {
        removeTemporaryFolder(home, currentEnvironment());
    }
}

void terminateInBackground(IsolatedProcess process, milliseconds grace) {
    process.terminate();
    try {
        std::thread([ending = std::move(process), grace]() mutable {
            std::vector<IsolatedProcess> processes;
            processes.push_back(std::move(ending));
            terminateAndWait(std::move(processes), grace);
        }).detach();
    } catch (const std::system_error&) {
        // Without a thread, SIGTERM has to do.
    }
}

} // namespace quorvel

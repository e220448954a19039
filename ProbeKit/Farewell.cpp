#include "ProbeKit/Farewell.h"

#include <algorithm>
#include <csignal>
#include <set>
#include <system_error>
#include <thread>

namespace quorvel {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds nap{20};
constexpr milliseconds leastPatience{1000};

// What the trials' processes started, whether it still stands below them or not.
class Relatives {
public:
    explicit Relatives(const std::vector<TrialProcess>& trials) {
        for (const TrialProcess& trial : trials) {
            homes_.insert(trial.home);
            launched_.insert(trial.process.identifier());
            known_.insert(trial.started.begin(), trial.started.end());
        }
    }

    // Those that run now, without the launched ones.
    [[nodiscard]] std::vector<ProcessIdentity> running() {
        for (const std::string& home : homes_) {
            for (const ProcessIdentity& process : processesWithHome(home)) {
                known_.insert(process);
            }
        }
        std::vector<ProcessIdentity> found;
        std::copy_if(known_.begin(), known_.end(), std::back_inserter(found),
                     [this](const ProcessIdentity& process) {
                         return !launched_.contains(process.pid) && isRunning(process);
                     });
        return found;
    }

private:
    std::set<std::string> homes_{};
    std::set<pid_t> launched_{};
    std::set<ProcessIdentity> known_{};
};

// Each is asked once, as soon as it is found.
void askToEnd(const std::vector<ProcessIdentity>& processes, std::set<ProcessIdentity>& asked) {
    for (const ProcessIdentity& process : processes) {
        if (asked.insert(process).second) {
            ::kill(process.pid, SIGTERM);
        }
    }
}

void endByForce(std::vector<TrialProcess>& trials, Relatives& relatives) {
    for (TrialProcess& trial : trials) {
        trial.process.sendSignal(SIGKILL);
    }
    // One that forks while it is looked for has a child that is found next time.
    constexpr int rounds = 50;
    for (int round = 0; round < rounds; ++round) {
        const std::vector<ProcessIdentity> left = relatives.running();
        if (left.empty()) {
            break;
        }
        for (const ProcessIdentity& process : left) {
            ::kill(process.pid, SIGKILL);
        }
        std::this_thread::sleep_for(nap);
    }
    for (TrialProcess& trial : trials) {
        trial.process.waitUntilExit();
    }
}

} // namespace

// Once it has ended, nobody can tell what it started, unless by the home.
void TrialProcess::terminate() {
    started = descendantsOf(process.identifier());
    process.terminate();
}

void waitForEnd(std::vector<TrialProcess> trials, milliseconds grace) {
    const auto end = Clock::now() + grace;
    Relatives relatives(trials);
    const auto isRunning = [](TrialProcess& trial) { return trial.process.isRunning(); };
    while (std::any_of(trials.begin(), trials.end(), isRunning) && Clock::now() < end) {
        std::this_thread::sleep_for(nap);
    }
    std::set<ProcessIdentity> asked;
    const auto last = std::max(end, Clock::now() + leastPatience);
    for (auto left = relatives.running(); !left.empty() && Clock::now() < last;
         left = relatives.running()) {
        askToEnd(left, asked);
        std::this_thread::sleep_for(nap);
    }
    endByForce(trials, relatives);
}

void endInBackground(TrialProcess trial, milliseconds grace) {
    try {
        std::thread([ending = std::move(trial), grace]() mutable {
            std::vector<TrialProcess> trials;
            trials.push_back(std::move(ending));
            waitForEnd(std::move(trials), grace);
        }).detach();
    } catch (const std::system_error&) {
        // Without a thread it was still asked politely to end.
    }
}

} // namespace quorvel

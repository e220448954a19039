#include "Platform/shutdown/SignalForwarder.h"

#include "Platform/shutdown/ProcessAdoption.h"

#include <cerrno>
#include <chrono>
#include <pthread.h>
#include <set>
#include <sys/wait.h>
#include <vector>

namespace quorvel {
namespace {

// Reaps the companions that have ended, each by its object, which then knows.
void reap(std::vector<Process>& companions) {
    std::erase_if(companions, [](Process& companion) { return !companion.isRunning(); });
}

// Children that this process adopted must not stay zombies. The process itself is reaped by its
// owner, who needs its status.
void reapOthersThan(const Process& process) {
    while (true) {
        siginfo_t ended{};
        if (::waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) != 0 || ended.si_pid == 0 ||
            ended.si_pid == process.identifier()) {
            return;
        }
        (void)::waitpid(ended.si_pid, nullptr, WNOHANG);
    }
}

// Returns the children except the companions, after reaping those that have ended.
std::vector<pid_t> othersThan(std::vector<Process>& companions) {
    reap(companions);
    pid_t ended = 1;
    while (ended > 0 || (ended < 0 && errno == EINTR)) {
        ended = ::waitpid(-1, nullptr, WNOHANG);
    }
    if (ended < 0) {
        return {}; // without children, there is no need to search all processes for them
    }
    std::vector<pid_t> children = runningChildren();
    for (const Process& companion : companions) {
        std::erase(children, companion.identifier());
    }
    return children;
}

// Until it is reaped, a child's number cannot belong to another process.
void sendOnce(int signal, const std::vector<pid_t>& children, std::set<pid_t>& asked) {
    for (const pid_t child : children) {
        if (signal != 0 && asked.insert(child).second) {
            ::kill(child, signal);
        }
    }
}

} // namespace

SignalForwarder::SignalForwarder() {
    // Our parent may have ignored SIGCHLD, which would discard the child's exit status. Without a
    // handler, some systems discard the signal even while sigwait() waits for it.
    std::signal(SIGCHLD, [](int) {});
    sigemptyset(&signals_);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGCHLD}) {
        sigaddset(&signals_, signal);
    }
    pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
}

void SignalForwarder::stop() const {
    std::signal(SIGCHLD, SIG_DFL);
    pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
}

int SignalForwarder::nextSignal() const {
    int signal = 0;
    sigwait(&signals_, &signal);
    return signal == SIGCHLD ? 0 : signal;
}

int SignalForwarder::waitUntilExit(Process& process, std::vector<Process> companions) const {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds recently{10};
    int last = 0;
    Clock::time_point lastAt;
    while (process.isRunning()) {
        if (const int signal = nextSignal(); signal != 0) {
            last = signal;
            lastAt = Clock::now();
            process.sendSignal(signal);
        }
        reap(companions);
        reapOthersThan(process);
    }
    const int status = process.waitUntilExit();
    // What the process survived long ago was not what ended it.
    if (Clock::now() - lastAt > recently) {
        last = 0;
    }
    std::set<pid_t> asked;
    for (auto left = othersThan(companions); !left.empty(); left = othersThan(companions)) {
        sendOnce(last, left, asked);
        if (const int signal = nextSignal(); signal != 0) {
            last = signal;
            asked.clear();
        }
    }
    for (Process& companion : companions) {
        companion.terminate();
    }
    return status;
}

} // namespace quorvel

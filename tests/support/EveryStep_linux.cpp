#include "tests/support/EveryStep.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel::testing {
namespace {

constexpr int refused = 77;

[[noreturn]] void work(const std::function<void()>& task) {
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
        std::_Exit(refused);
    }
    ::raise(SIGSTOP);
    try {
        task();
    } catch (...) {
        std::_Exit(1);
    }
    std::_Exit(0);
}

pid_t start(const std::function<void()>& task) {
    const pid_t child = ::fork();
    if (child < 0) {
        throw std::runtime_error("no process can be made");
    }
    if (child == 0) {
        work(task);
    }
    return child;
}

int nextStop(pid_t child) {
    int status = 0;
    if (::waitpid(child, &status, 0) != child) {
        throw std::runtime_error("the child is gone");
    }
    return status;
}

void kill(pid_t child) {
    ::kill(child, SIGKILL);
    while (::waitpid(child, nullptr, 0) == child) {
    }
}

Kill endedWith(int status) {
    if (WIFEXITED(status) && WEXITSTATUS(status) == refused) {
        return Kill::notPermitted;
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error("the work failed by itself: " + std::to_string(status));
    }
    return Kill::ended;
}

} // namespace

Kill killedBefore(int step, const std::function<void()>& task) {
    const pid_t child = start(task);
    int status = nextStop(child);
    if (!WIFSTOPPED(status)) {
        return endedWith(status);
    }
    ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    // A call stops twice: before it and after it.
    for (int stops = 0; stops <= 2 * step; ++stops) {
        ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        status = nextStop(child);
        if (!WIFSTOPPED(status)) {
            return endedWith(status);
        }
    }
    kill(child);
    return Kill::done;
}

std::vector<long> systemCallsOf(const std::function<void()>& task) {
    const pid_t child = start(task);
    std::vector<long> calls;
    int status = nextStop(child);
    ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    while (WIFSTOPPED(status)) {
        __ptrace_syscall_info info{};
        ::ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info);
        if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
            calls.push_back(static_cast<long>(info.entry.nr));
        }
        ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        status = nextStop(child);
    }
    (void)endedWith(status);
    return calls;
}

} // namespace quorvel::testing

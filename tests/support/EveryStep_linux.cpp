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
    const pid_t child = ::fork();
    if (child < 0) {
        throw std::runtime_error("no process can be made");
    }
    if (child == 0) {
        work(task);
    }
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

} // namespace quorvel::testing

#include "tests/support/EveryStep.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <elf.h>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/fs.h>
#include <linux/seccomp.h>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
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

// The calls that may change something on disk, besides that which creates files.
constexpr std::array changingCalls {
    SYS_write, SYS_pwrite64, SYS_writev, SYS_renameat, SYS_renameat2, SYS_mkdirat, SYS_unlinkat,
        SYS_symlinkat, SYS_linkat, SYS_fchmod, SYS_fchmodat, SYS_fchown, SYS_fchownat, SYS_fsync,
        SYS_fdatasync, SYS_syncfs, SYS_ftruncate, SYS_fallocate, SYS_utimensat, SYS_setxattr,
        SYS_lsetxattr, SYS_fsetxattr, SYS_sendfile, SYS_copy_file_range,
#if defined(__x86_64__)
        SYS_rename, SYS_mkdir, SYS_unlink, SYS_rmdir, SYS_symlink, SYS_link, SYS_chmod,
#endif
};

// Makes the kernel stop this process at these calls only, which is far quicker than at all.
bool stopAtChangingCalls() {
    std::vector<sock_filter> program{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
    };
    for (const long call : changingCalls) {
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1));
        program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
    }
    // Cloning a file is one of the many things that this call does.
    program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_ioctl, 0, 3));
    program.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[1])));
    program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, FICLONE, 0, 1));
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
    program.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)));
    program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat, 0, 3));
    program.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])));
    program.push_back(BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, O_CREAT, 0, 1));
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

// Skips the call that is about to begin, and lets it return this.
#if defined(__aarch64__)
void skipCall(pid_t child, long result) {
    int none = -1;
    iovec call{&none, sizeof none};
    ::ptrace(PTRACE_SETREGSET, child, NT_ARM_SYSTEM_CALL, &call);
    user_regs_struct registers{};
    iovec all{&registers, sizeof registers};
    ::ptrace(PTRACE_GETREGSET, child, NT_PRSTATUS, &all);
    registers.regs[0] = static_cast<unsigned long long>(result);
    ::ptrace(PTRACE_SETREGSET, child, NT_PRSTATUS, &all);
}
#else
void skipCall(pid_t child, long result) {
    user_regs_struct registers{};
    ::ptrace(PTRACE_GETREGS, child, nullptr, &registers);
    registers.orig_rax = static_cast<unsigned long long>(-1L);
    registers.rax = static_cast<unsigned long long>(result);
    ::ptrace(PTRACE_SETREGS, child, nullptr, &registers);
}
#endif

bool isAtChangingCall(int status) {
    return WIFSTOPPED(status) && status >> 8 == (SIGTRAP | (PTRACE_EVENT_SECCOMP << 8));
}

} // namespace

FaultOutcome withFault(int step, const Fault& fault, const std::function<void()>& task) {
    const pid_t child = start([&] {
        if (!stopAtChangingCalls()) {
            std::_Exit(refused);
        }
        task();
    });
    int status = nextStop(child);
    ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESECCOMP | PTRACE_O_EXITKILL);
    Kill outcome = Kill::ended;
    for (int calls = 0; WIFSTOPPED(status); status = nextStop(child)) {
        if (isAtChangingCall(status) && calls++ == step) {
            outcome = Kill::done;
            if (fault.meanwhile) {
                fault.meanwhile();
            } else if (fault.error == 0) {
                kill(child);
                return {outcome};
            } else {
                skipCall(child, -fault.error);
            }
        }
        ::ptrace(PTRACE_CONT, child, nullptr, nullptr);
    }
    const int result = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return {result == refused ? Kill::notPermitted : outcome, result};
}

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

#pragma once

#include <functional>
#include <vector>

namespace quorvel::testing {

/// The outcome of `killedBefore`.
enum class Kill {
    done,        ///< it was killed there
    ended,       ///< it had already ended, with status 0
    notPermitted ///< this system does not permit tracing
};

/// Runs `work` in a child process and kills it, as `kill -9` does, before its system call number
/// `step`. Every one of them from 0 on, until `ended`, leaves no moment out.
/// Throws `std::runtime_error` if `work` itself fails. `work` must start no threads.
[[nodiscard]] Kill killedBefore(int step, const std::function<void()>& work);

/// What happens to a system call that changes something on disk.
struct Fault {
    int error = 0; ///< the call fails with this, once, without effect; 0: the process is killed
    /// If set, this is done right before the call instead, which then is made.
    std::function<void()> meanwhile{};
};

/// The outcome of `withFault`.
struct FaultOutcome {
    Kill kill = Kill::done; ///< `ended` if there are not as many calls, with any status
    int status = 0;         ///< the exit status, if not killed; 1 if `work` threw
};

/// Runs `work` in a child process in which the system call number `step`, among those that may
/// change something on disk, meets with the fault. Numbers from 0 on until `ended` leave none out.
[[nodiscard]] FaultOutcome withFault(int step, const Fault& fault,
                                     const std::function<void()>& work);

/// Returns the numbers of the system calls that `work` makes in a child process, in order; none if
/// this system does not permit tracing.
[[nodiscard]] std::vector<long> systemCallsOf(const std::function<void()>& work);

} // namespace quorvel::testing

#pragma once

#include <functional>
#include <vector>

namespace quorvel::testing {

/// How `killedBefore` went.
enum class Kill {
    done,        ///< it was killed there
    ended,       ///< it had ended by then, with status 0
    notPermitted ///< nobody may trace processes here
};

/// Runs `work` in a child process and kills it, as `kill -9` does, before its system call number
/// `step`. Every one of them from 0 on, until `ended`, leaves no moment out.
/// Throws `std::runtime_error` when `work` fails by itself. `work` must start no threads.
[[nodiscard]] Kill killedBefore(int step, const std::function<void()>& work);

/// The numbers of the system calls that `work` makes in a child process, in order; empty where
/// nobody may trace processes.
[[nodiscard]] std::vector<long> systemCallsOf(const std::function<void()>& work);

} // namespace quorvel::testing

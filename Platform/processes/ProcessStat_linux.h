#pragma once

#include <cstdint>
#include <optional>
#include <sys/types.h>
#include <vector>

namespace quorvel {

/// What the system's table says about a process.
struct ProcessStat {
    char state = 'X'; ///< 'Z' and 'X' have ended
    pid_t parent = 0;
    std::uint64_t started = 0; ///< in the system's ticks since its start
};

/// Returns std::nullopt if there is no such process.
[[nodiscard]] std::optional<ProcessStat> processStat(pid_t pid);

/// The numbers of all processes.
[[nodiscard]] std::vector<pid_t> allProcesses();

} // namespace quorvel

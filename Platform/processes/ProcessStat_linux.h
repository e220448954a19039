#pragma once

#include <cstdint>
#include <optional>
#include <sys/types.h>
#include <vector>

namespace quorvel {

/// A process according to /proc/PID/stat.
struct ProcessStat {
    char state = 'X'; ///< 'Z' and 'X' mean that it has ended
    pid_t parent = 0;
    std::uint64_t cpuTime = 0; ///< in clock ticks
    std::uint64_t started = 0; ///< in clock ticks since the system was started
};

/// Returns the status of a process, or std::nullopt if there is no such process.
[[nodiscard]] std::optional<ProcessStat> processStat(pid_t pid);

/// Returns the numbers of all processes.
[[nodiscard]] std::vector<pid_t> allProcesses();

} // namespace quorvel

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quorvel {

/// A process according to /proc/PID/stat.
struct ProcessStat {
    char state = 'X'; ///< 'Z' and 'X' mean that it has ended
    pid_t parent = 0;
    std::chrono::milliseconds cpuTime{}; ///< used so far
    std::uint64_t started = 0;           ///< in clock ticks since the system was started
};

/// Returns the status of a process, or std::nullopt if there is no such process.
[[nodiscard]] std::optional<ProcessStat> processStat(pid_t pid);

/// Returns how long ago the process was started.
[[nodiscard]] std::chrono::milliseconds ageOf(const ProcessStat& stat);

/// Returns the path of the program that a process runs, followed by " (deleted)" if it was removed
/// or replaced; empty if it can't be read.
[[nodiscard]] std::string programOf(pid_t pid);

/// Returns the numbers of all processes.
[[nodiscard]] std::vector<pid_t> allProcesses();

} // namespace quorvel

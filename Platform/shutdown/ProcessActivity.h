#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <sys/types.h>

namespace quorvel {

/// What a process and its descendants are doing, taken together.
struct ProcessActivity {
    std::chrono::milliseconds cpuTime{}; ///< used so far by those that still run
    bool wantsToRun = false;             ///< one of them runs, waits for a processor or for a disk
    bool waitsForLock = false;           ///< one of them waits for a lock on a file
};

/// Returns the activity of a process and its descendants. All zeros for a process that has ended,
/// and on macOS.
[[nodiscard]] ProcessActivity activityOf(pid_t process);

/// Returns whether this user runs this executable file with this value of HOME. On macOS always
/// false.
[[nodiscard]] bool isRunningWithHome(const std::filesystem::path& executable,
                                     const std::string& home);

} // namespace quorvel

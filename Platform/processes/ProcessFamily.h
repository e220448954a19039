#pragma once

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quorvel {

/// Identifies a process, which need not be our child, across reuse of its number.
struct ProcessIdentity {
    pid_t pid = 0;
    std::uint64_t started = 0; ///< when it was started, in a unit that depends on the system

    // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy 14 takes the comparison's 0 for a pointer.
    auto operator<=>(const ProcessIdentity&) const = default;
};

/// Returns the running processes below that one: its children, their children, and so on; without
/// those for which `isApart` returns true, and what is below them.
[[nodiscard]] std::vector<ProcessIdentity>
descendantsOf(pid_t root, const std::function<bool(pid_t process)>& isApart = {});

/// Returns the running children of that process.
[[nodiscard]] std::vector<ProcessIdentity> childrenOf(pid_t parent);

/// Returns whether a process below `runner`, a clone's runner, belongs to the user and no longer to
/// the clone, like the browser in which a link was opened: its session is not the runner's, but its
/// HOME is, and its parent is the runner or does not have that HOME. Returns false if that can't be
/// determined, and on macOS.
[[nodiscard]] bool hasLeftClone(pid_t process, pid_t runner);

/// Returns whether both processes have the same HOME. Returns false if that can't be determined,
/// and on macOS.
[[nodiscard]] bool haveSameHome(pid_t process, pid_t other);

/// Returns the descendants of a clone's runner, without those that have left the clone and theirs.
[[nodiscard]] std::vector<ProcessIdentity> cloneProcesses(pid_t runner);

/// Returns the running processes of this user that were started with this value of HOME. Returns
/// none on macOS, which has no reliable way to find them.
[[nodiscard]] std::vector<ProcessIdentity> processesWithHome(const std::string& home);

/// Returns the running processes whose program is that file, also if it was removed since. If it is
/// the program of a bundle, also those started before a `StagedChange` replaced the bundle, but not
/// on macOS. Skips those of other users.
[[nodiscard]] std::vector<ProcessIdentity> processesOf(const std::filesystem::path& program);

/// Returns the running processes whose first or second argument is that script: interpreters get it
/// there. Returns none on macOS.
[[nodiscard]] std::vector<ProcessIdentity> processesOfScript(const std::filesystem::path& script);

/// Returns the running processes that inherited that file or folder as `Process::keptDescriptor`.
/// Returns none on macOS.
[[nodiscard]] std::vector<ProcessIdentity> processesKeeping(const std::filesystem::path& item);

/// Returns whether a process of this number is running that was started before that date, in
/// seconds since 1970. One that was started later has reused the number of another.
[[nodiscard]] bool isRunningSince(pid_t pid, std::time_t date);

/// Returns whether the process is still running. A zombie is not.
[[nodiscard]] bool isRunning(const ProcessIdentity& process);

} // namespace quorvel

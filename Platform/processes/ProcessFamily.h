#pragma once

#include <cstdint>
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

/// Returns the running processes below that one: its children, their children, and so on.
[[nodiscard]] std::vector<ProcessIdentity> descendantsOf(pid_t root);

/// Returns the running children of that process.
[[nodiscard]] std::vector<ProcessIdentity> childrenOf(pid_t parent);

/// Returns whether the process was started with this value of HOME. False if that can't be read,
/// and on macOS.
[[nodiscard]] bool hasHome(pid_t pid, const std::string& home);

/// Returns the running processes of this user that were started with this value of HOME. Returns
/// none on macOS, which has no reliable way to find them.
[[nodiscard]] std::vector<ProcessIdentity> processesWithHome(const std::string& home);

/// Returns whether the process is still running. A zombie is not.
[[nodiscard]] bool isRunning(const ProcessIdentity& process);

} // namespace quorvel

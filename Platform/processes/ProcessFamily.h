#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quorvel {

/// A process that need not be a child of ours, told apart from a later one with the same number.
struct ProcessIdentity {
    pid_t pid = 0;
    std::uint64_t started = 0; ///< 0 where the system doesn't tell

    auto operator<=>(const ProcessIdentity&) const = default;
};

/// The running processes below that one: its children, theirs, and so on.
[[nodiscard]] std::vector<ProcessIdentity> descendantsOf(pid_t root);

/// The running processes that were started with this value of HOME, whoever their parent is by now.
/// Those of other users are not seen. On macOS there is no dependable way to know: none.
[[nodiscard]] std::vector<ProcessIdentity> processesWithHome(const std::string& home);

/// Whether it still runs; a zombie does not.
[[nodiscard]] bool isRunning(const ProcessIdentity& process);

} // namespace quorvel

#pragma once

#include <string>
#include <string_view>

namespace quorvel {

/// Returns whether the process whose /proc/PID/status is `page` is in a sandbox that the process of
/// `own` is not in: its system calls are filtered, and it has process numbers of its own. A filter
/// alone may be the whole container's.
[[nodiscard]] bool isSandboxed(std::string_view page, std::string_view own);

/// Returns why the pages' processes, descendants of this one, are not known to be in their sandbox,
/// as a sentence; empty if all are.
[[nodiscard]] std::string sandboxProblem();

} // namespace quorvel

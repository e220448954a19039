#pragma once

#include <set>
#include <string_view>
#include <sys/types.h>

namespace quorvel {

/// Returns the processes that wait for a lock according to `locks`, the contents of /proc/locks.
[[nodiscard]] std::set<pid_t> lockWaiters(std::string_view locks);

/// Returns the processes that wait for a lock now.
[[nodiscard]] std::set<pid_t> processesWaitingForLocks();

} // namespace quorvel

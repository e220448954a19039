#pragma once

#include "Platform/desktop/RunningApplications.h"

#include <set>
#include <string_view>
#include <vector>

namespace quorvel {

/// Returns those of the processes that represent an application: the topmost of each tree of
/// processes of one bundle. If a bundle has several, those that wait for a lock are left out, since
/// they have not started up. At least one process of each bundle is kept.
[[nodiscard]] std::vector<RunningApplication>
onePerApplication(std::vector<RunningApplication> processes);

/// Returns the processes that wait for a lock according to `locks`, the contents of /proc/locks.
[[nodiscard]] std::set<pid_t> lockWaiters(std::string_view locks);

} // namespace quorvel

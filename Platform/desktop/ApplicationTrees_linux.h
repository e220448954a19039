#pragma once

#include "Platform/desktop/RunningApplications.h"

#include <set>
#include <string_view>
#include <vector>

namespace quorvel {

/// Leaves of all processes those that stand for an application of their own: the topmost of each
/// tree of processes of one bundle, and of several trees not those whose process waits for a lock
/// that another holds, since it never came up. One process of each bundle always stays.
[[nodiscard]] std::vector<RunningApplication>
onePerApplication(std::vector<RunningApplication> processes);

/// The processes that wait for a lock, in the form of /proc/locks.
[[nodiscard]] std::set<pid_t> lockWaiters(std::string_view locks);

} // namespace quorvel

#pragma once

#include "Platform/desktop/RunningApplications.h"

#include <vector>

namespace quorvel {

/// Returns those of the processes that represent an application: the topmost of each tree of
/// processes of one bundle. If a bundle has several, those that wait for a lock are left out, since
/// they have not started up. At least one process of each bundle is kept.
[[nodiscard]] std::vector<RunningApplication>
onePerApplication(std::vector<RunningApplication> processes);

} // namespace quorvel

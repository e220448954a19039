#pragma once

#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceLauncher.h"
#include "Platform/processes/Process.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

struct InstanceConfig;

/// What became of a handover.
struct Handover {
    bool isTaken = false; ///< by the application that runs
    /// The second application, if the first ended instead: it now runs in the first one's place,
    /// and its home is claimed as long as it or `claim` exists.
    std::optional<Process> successor{};
    std::optional<PendingHomeLock> claim{};
    std::size_t leftOut = 0; ///< the number of documents that were not handed over
};

/// Hands documents, addresses, an action or the request to come to the front to the running
/// application of a clone. To do so, starts the application again in the same home and environment:
/// with some engines, the second process passes on to the first what it is given, and exits. If it
/// doesn't within 15 seconds, and isn't the successor, it is asked to end. Applications with other
/// engines are not started again. Throws what `launch` throws.
[[nodiscard]] Handover handOver(const InstanceConfig& config,
                                const std::vector<std::string>& documents,
                                const StartDetails& details = {});

} // namespace quorvel

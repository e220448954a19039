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
    /// Otherwise the second one, if the first ended meanwhile: it now runs in its place, and its
    /// home is claimed for as long as it or `claim` exists.
    std::optional<Process> successor{};
    std::optional<PendingHomeLock> claim{};
    std::size_t leftOut = 0; ///< how many documents were not handed over in the end
};

/// Hands documents, addresses, an action, or that it is to come to the front, to the application of
/// a clone that is running already, by starting it a second time in the same home and environment:
/// applications of some engines pass on to the first what the second one is given. Leaves nothing
/// running, unless it is the successor, if the application is of another engine or does not pass
/// them on within a few seconds. Throws what `launch` throws.
[[nodiscard]] Handover handOver(const InstanceConfig& config,
                                const std::vector<std::string>& documents,
                                const StartDetails& details = {});

} // namespace quorvel

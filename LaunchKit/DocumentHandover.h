#pragma once

#include <string>
#include <vector>

namespace quorvel {

struct InstanceConfig;

/// Hands documents or addresses to the application of a clone that is running already, by starting
/// it a second time in the same home and environment: applications of some engines pass on to the
/// first what the second one is given. Returns false, and leaves nothing running, if the
/// application is of another engine or does not pass them on within a few seconds.
[[nodiscard]] bool handOver(const InstanceConfig& config,
                            const std::vector<std::string>& documents);

} // namespace quorvel

#pragma once

#include "Platform/processes/StartReport.h"
#include "Runner/Runner.h"

#include <string>

namespace quorvel {

struct InstanceConfig;

/// Writes the message as one line to standard error and to the report, and returns the status.
[[nodiscard]] int failWith(const StartReport& report, const std::string& message,
                           RunnerStatus status);

/// Adds the message to the clone's log, whose folder is created if missing.
void addToLog(const InstanceConfig& config, const std::string& message);

} // namespace quorvel

#pragma once

#include "Platform/processes/Process.h"

#include <optional>
#include <string>

namespace quorvel {

struct InstanceConfig;

/// Starts a program that shows the clone with this `cloneIdentity` in the tray, if its
/// configuration asks for that. It ends when this process does. Returns `std::nullopt` if none is
/// needed, or none is installed. Never throws.
[[nodiscard]] std::optional<Process> startStatusItem(const InstanceConfig& config,
                                                     const std::string& identity);

} // namespace quorvel

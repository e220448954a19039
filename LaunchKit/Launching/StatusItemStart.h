#pragma once

#include "Platform/processes/Process.h"

#include <optional>
#include <string>

namespace quorvel {

struct InstanceConfig;

/// Returns whether a separate program shows the clone in the tray or the menu bar. A web clone does
/// that itself, and what a file clone opens lasts longer than the clone.
[[nodiscard]] bool needsStatusItem(const InstanceConfig& config);

/// Starts a program that shows the clone with this `cloneIdentity` in the tray or the menu bar, if
/// its configuration asks for that. It ends when this process does. Returns `std::nullopt` if none
/// is needed, or there is none. Never throws.
[[nodiscard]] std::optional<Process> startStatusItem(const InstanceConfig& config,
                                                     const std::string& identity);

} // namespace quorvel

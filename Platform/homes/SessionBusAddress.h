#pragma once

#include "Platform/processes/Environment.h"

#include <optional>
#include <string>

namespace quorvel {

/// The variable that says where the session's bus is.
inline constexpr const char* sessionBusVariable = "DBUS_SESSION_BUS_ADDRESS";

/// Returns the address of the session's bus: what the variable says, otherwise the bus in the
/// session's runtime folder. Returns std::nullopt if there is none: libraries that are asked to
/// connect then would start a bus that outlives the program.
[[nodiscard]] std::optional<std::string> sessionBusAddress(const Environment& session);

} // namespace quorvel

#pragma once

#include "Platform/statusitem/GObjects_linux.h"

#include <gio/gio.h>

#include <string>

namespace quorvel {

/// Connects to the session bus within two seconds. Sets the variable that names the bus if it is
/// missing and the bus is in its usual place. Returns null if no bus answers; none is started. Call
/// it before anything else starts a thread.
[[nodiscard]] ObjectRef<GDBusConnection> connectToSessionBus();

} // namespace quorvel

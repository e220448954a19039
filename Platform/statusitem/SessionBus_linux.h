#pragma once

#include "Platform/statusitem/GObjects_linux.h"

#include <gio/gio.h>

#include <string>

namespace quorvel {

/// Connects to the session bus within two seconds. Sets the variable that names the bus if that is
/// only where it is expected. Returns null if there is none that answers; no bus is started. Call
/// it before anything else starts a thread.
[[nodiscard]] ObjectRef<GDBusConnection> connectToSessionBus();

} // namespace quorvel

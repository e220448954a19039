#pragma once

namespace quorvel {

/// Returns whether `HOME` counts before the user database. On Linux it does, as for shells, Qt and
/// GLib; on macOS the system's own lookup ignores it.
[[nodiscard]] bool homeVariableComesFirst();

} // namespace quorvel

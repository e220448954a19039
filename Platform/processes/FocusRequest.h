#pragma once

namespace quorvel {

/// Set in the environment of a clone's executable if the clone is running already and only has to
/// come to the front, by the activation token in the same environment. Older executables don't know
/// it.
inline constexpr const char* focusVariable = "QUORVEL_FOCUS";

} // namespace quorvel

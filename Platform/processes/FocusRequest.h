#pragma once

namespace quorvel {

/// Set in the environment of a clone's executable if the clone runs already and is only to come to
/// the front, by the activation token that is there too. Older executables don't know it.
inline constexpr const char* focusVariable = "QUORVEL_FOCUS";

} // namespace quorvel

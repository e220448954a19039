#pragma once

#include <spawn.h>

/// The system-specific parts of starting a process.
namespace quorvel::ProcessSpawning {

/// Returns the environment of this process as an array of C strings that ends with null.
[[nodiscard]] char** environmentBlock();

/// Makes the child inherit our stream of this number.
void keepStream(posix_spawn_file_actions_t& actions, int stream);

/// Closes all descriptors above the standard streams in the child. Takes effect only together with
/// `closingFlags()`, and must be the last action.
void closeOthers(posix_spawn_file_actions_t& actions);

/// Does the same, but leaves the descriptor `kept` open.
void closeOthersBut(posix_spawn_file_actions_t& actions, int kept);

/// Returns the spawn flags that `closeOthers` and `closeOthersBut` need.
[[nodiscard]] int closingFlags();

} // namespace quorvel::ProcessSpawning

#pragma once

#include <spawn.h>

/// The parts of starting a process that every system spells in its own way.
namespace quorvel::ProcessSpawning {

/// The environment of this process, as the system keeps it.
[[nodiscard]] char** environmentBlock();

/// Lets the child have our stream of this number.
void keepStream(posix_spawn_file_actions_t& actions, int stream);

/// Keeps every descriptor above the standard streams from the child, together with the flags below.
/// To be added when all others are.
void closeOthers(posix_spawn_file_actions_t& actions);
void closeOthersBut(posix_spawn_file_actions_t& actions, int kept);
[[nodiscard]] int closingFlags();

} // namespace quorvel::ProcessSpawning

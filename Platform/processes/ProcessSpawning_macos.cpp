#include "Platform/processes/ProcessSpawning.h"

#include <crt_externs.h>

namespace quorvel::ProcessSpawning {

// On macOS, libraries may not use `environ`.
char** environmentBlock() {
    return *_NSGetEnviron();
}

void keepStream(posix_spawn_file_actions_t& actions, int stream) {
    posix_spawn_file_actions_addinherit_np(&actions, stream);
}

// The flag closes what no action mentions.
void closeOthers(posix_spawn_file_actions_t& /*actions*/) {}

void closeOthersBut(posix_spawn_file_actions_t& /*actions*/, int /*kept*/) {}

int closingFlags() {
    return POSIX_SPAWN_CLOEXEC_DEFAULT;
}

} // namespace quorvel::ProcessSpawning

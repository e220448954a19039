#include "Platform/processes/ProcessSpawning.h"

#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): not every C library declares it

namespace quorvel::ProcessSpawning {

char** environmentBlock() {
    return environ;
}

// A descriptor without FD_CLOEXEC is inherited anyway.
void keepStream(posix_spawn_file_actions_t& /*actions*/, int /*stream*/) {}

void closeOthers(posix_spawn_file_actions_t& actions) {
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
}

void closeOthersBut(posix_spawn_file_actions_t& actions, int kept) {
    for (int descriptor = STDERR_FILENO + 1; descriptor < kept; ++descriptor) {
        posix_spawn_file_actions_addclose(&actions, descriptor);
    }
    posix_spawn_file_actions_addclosefrom_np(&actions, kept + 1);
}

int closingFlags() {
    return 0;
}

} // namespace quorvel::ProcessSpawning

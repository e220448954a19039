#pragma once

#include_next <spawn.h>

#include <Availability.h>

#define POSIX_SPAWN_CLOEXEC_DEFAULT 0x4000

#ifdef __cplusplus
extern "C" {
#endif
int posix_spawn_file_actions_addinherit_np(posix_spawn_file_actions_t* actions, int descriptor)
    SINCE_MACOS(10.7);
#ifdef __cplusplus
}
#endif

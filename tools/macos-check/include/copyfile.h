#pragma once

#include <Availability.h>

#include <stdint.h>

typedef struct _copyfile_state* copyfile_state_t;
typedef uint32_t copyfile_flags_t;

#define COPYFILE_ACL (1 << 0)
#define COPYFILE_XATTR (1 << 2)

#ifdef __cplusplus
extern "C" {
#endif
int fcopyfile(int from, int to, copyfile_state_t state, copyfile_flags_t flags) SINCE_MACOS(10.5);
#ifdef __cplusplus
}
#endif

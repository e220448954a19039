#pragma once

#include <Availability.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
int fclonefileat(int from, int folder, const char* name, uint32_t flags) SINCE_MACOS(10.12);
#ifdef __cplusplus
}
#endif

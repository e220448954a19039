#pragma once

#include <stdint.h>

/// Fails if the buffer is too small, and sets the size to the one needed.
#ifdef __cplusplus
extern "C" {
#endif
int _NSGetExecutablePath(char* buffer, uint32_t* size);
#ifdef __cplusplus
}
#endif

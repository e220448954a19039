#pragma once

#include <stdint.h>

/// Fails, and tells the size that is needed, when the buffer is too small.
#ifdef __cplusplus
extern "C" {
#endif
int _NSGetExecutablePath(char* buffer, uint32_t* size);
#ifdef __cplusplus
}
#endif

#pragma once

#include <Availability.h>

#include_next <stdio.h>

#define RENAME_EXCL 0x00000004

#ifdef __cplusplus
extern "C" {
#endif
extern FILE* __stderrp;
int renamex_np(const char* from, const char* to, unsigned int flags) SINCE_MACOS(10.12);
#ifdef __cplusplus
}
#endif
#undef stderr
#define stderr __stderrp

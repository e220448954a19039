#pragma once

#include <Availability.h>

#include_next <stdio.h>

#define RENAME_SWAP 0x00000002
#define RENAME_EXCL 0x00000004

#ifdef __cplusplus
extern "C" {
#endif
extern FILE* __stderrp;
int renameatx_np(int from_folder, const char* from, int to_folder, const char* to,
                 unsigned int flags) SINCE_MACOS(10.12);
#ifdef __cplusplus
}
#endif
#undef stderr
#define stderr __stderrp

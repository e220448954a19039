#pragma once

#include_next <sys/stat.h>

// The names that macOS has for the dates to the nanosecond.
#define st_atimespec st_atim
#define st_ctimespec st_ctim
#define st_mtimespec st_mtim

// An item's flags, in space that this system's structure reserves.
#define st_flags __glibc_reserved[0]
#define UF_IMMUTABLE 0x00000002U
#define UF_APPEND 0x00000004U
#define SF_IMMUTABLE 0x00020000U
#define SF_APPEND 0x00040000U

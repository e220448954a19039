#pragma once

#include_next <sys/stat.h>

// What macOS calls the dates to the nanosecond.
#define st_atimespec st_atim
#define st_mtimespec st_mtim

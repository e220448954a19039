#pragma once

// The 64-bit integers are long long on macOS and long in glibc. Overloads and format checks depend
// on it, so they are spelled as on macOS before glibc builds on them.
#define __int64_t glibc_int64
#define __uint64_t glibc_uint64
#include_next <bits/types.h>
#undef __int64_t
#undef __uint64_t
typedef long long __int64_t;
typedef unsigned long long __uint64_t;

#pragma once

#include_next <inttypes.h>

// macOS's 64-bit integers are long long.
#undef PRId64
#undef PRIi64
#undef PRIu64
#undef PRIx64
#undef PRIX64
#define PRId64 "lld"
#define PRIi64 "lli"
#define PRIu64 "llu"
#define PRIx64 "llx"
#define PRIX64 "llX"

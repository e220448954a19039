#pragma once

#include <Availability.h>
#include <stdint.h>

#define CC_SHA256_DIGEST_LENGTH 32
typedef uint32_t CC_LONG;

#ifdef __cplusplus
extern "C" {
#endif
unsigned char* CC_SHA256(const void* data, CC_LONG length, unsigned char* digest) SINCE_MACOS(10.4);
#ifdef __cplusplus
}
#endif

#pragma once

// Marks for declarations, and the numbers that other headers compare.

#define __MAC_10_15 101500
#define __MAC_11_0 110000
#define __MAC_12_0 120000
#define __MAC_13_0 130000
#define __MAC_14_0 140000
#define __MAC_OS_X_VERSION_MIN_REQUIRED __ENVIRONMENT_MAC_OS_X_VERSION_MIN_REQUIRED__
#define __MAC_OS_X_VERSION_MAX_ALLOWED __MAC_14_0

#define SINCE_MACOS(version) __attribute__((availability(macos, introduced = version)))

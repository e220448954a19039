// Reads profiles; what could be read is written and read again without a change.
#include "LaunchKit/AppProfile.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorvel;
    try {
        const auto profile = AppProfile::fromJson({reinterpret_cast<const char*>(data), size});
        if (AppProfile::fromJson(profile.encodedJSON()) != profile ||
            profile.reconciled("macOS 14.5").bundleId != profile.bundleId) {
            std::abort();
        }
    } catch (const ProfileError&) {
        // The one way to say no.
    }
    return 0;
}

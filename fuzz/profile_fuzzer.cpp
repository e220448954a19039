// Reads profiles; what could be read must survive being written and read again.
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
        // The only way in which it may refuse an input.
    }
    return 0;
}

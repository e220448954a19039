// Reads configurations; what could be read is written and read again without a change.
#include "LaunchKit/InstanceConfig.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorvel;
    try {
        const auto config = InstanceConfig::fromJson({reinterpret_cast<const char*>(data), size});
        const std::string json = config.json();
        if (InstanceConfig::fromJson(json).json() != json) {
            std::abort();
        }
    } catch (const ConfigError&) {
        // The one way to say no.
    }
    return 0;
}

// Reads configurations; what could be read must survive being written and read again.
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
        // The only way in which it may refuse an input.
    }
    return 0;
}

// Feeds bytes to the reader of dconf's databases.
#include "Platform/watching/DconfDatabase_linux.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto settings = quorvel::dconfSettings({reinterpret_cast<const char*>(data), size});
    std::size_t bytes = 0;
    for (const auto& [path, value] : settings.value_or(std::map<std::string, std::string>{})) {
        bytes += path.size() + value.size();
    }
    if (bytes > size * 16) {
        std::abort();
    }
    return 0;
}

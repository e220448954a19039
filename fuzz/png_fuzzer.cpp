// Feeds bytes to the check of the pictures that other processes hand over.
#include "LaunchKit/Icons/ImageFile.h"
#include "LaunchKit/Icons/SimplePng.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    constexpr unsigned side = 512;
    constexpr std::size_t smallest = 57; // a head, pixels and an end
    if (quorvel::isSimplePng(bytes, side) && (!quorvel::isPng(bytes) || size < smallest)) {
        std::abort();
    }
    return 0;
}

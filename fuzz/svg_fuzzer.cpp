// Draws what the check lets through: it must end soon, and need little memory.
#include "LaunchKit/Icons/SvgImage.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int side = 64;
    const QImage image = quorvel::svgImage({reinterpret_cast<const char*>(data), size}, side);
    if (!image.isNull() && image.size() != QSize(side, side)) {
        std::abort();
    }
    return 0;
}

#include "Presentation/SizeText.h"

#include <array>

namespace quorvel {

std::string sizeText(std::uintmax_t bytes) {
    if (bytes < 1000) {
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    }
    // In tenths, rounded down, so that no size looks larger than it is.
    std::uintmax_t tenths = bytes / 100;
    const std::array<const char*, 4> units{" kB", " MB", " GB", " TB"};
    std::size_t unit = 0;
    for (; tenths >= 10'000 && unit + 1 < units.size(); ++unit) {
        tenths /= 1000;
    }
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + units[unit];
}

} // namespace quorvel

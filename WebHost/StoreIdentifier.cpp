#include "WebHost/StoreIdentifier.h"

#include "Base/StableHash.h"

#include <charconv>
#include <string>

namespace quorvel {

std::array<std::uint8_t, 16> storeIdentifier(std::string_view home) {
    while (home.size() > 1 && home.ends_with('/')) {
        home.remove_suffix(1);
    }
    const std::string digits =
        stableHash(home) + stableHash("web data of " + std::string(home)); // 32 of them
    std::array<std::uint8_t, 16> bytes{};
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        const char* const two = digits.data() + 2 * index;
        (void)std::from_chars(two, two + 2, bytes[index], 16);
    }
    // The version for UUIDs made in a way of one's own, and the usual variant.
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x80U);
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);
    return bytes;
}

} // namespace quorvel

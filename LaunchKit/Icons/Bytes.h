#pragma once

#include <cstdint>
#include <string_view>

namespace quorvel {

/// Returns the big-endian number in the first four bytes, or in all of them if there are fewer.
[[nodiscard]] constexpr std::uint32_t bigEndian32(std::string_view bytes) noexcept {
    std::uint32_t number = 0;
    for (const char byte : bytes.substr(0, 4)) {
        number = (number << 8U) | static_cast<unsigned char>(byte);
    }
    return number;
}

} // namespace quorvel

#include "Platform/Utf8.h"

#include <unicode/utf8.h>

#include <cstdint>
#include <cstring>

namespace quorvel {
namespace {

constexpr std::uint64_t highBits = 0x8080808080808080U;

} // namespace

bool isUtf8(std::string_view bytes) noexcept {
    const auto length = static_cast<int32_t>(bytes.size());
    for (int32_t index = 0; index < length;) {
        // Most text is ASCII, which is let through eight bytes at a time.
        std::uint64_t eight = 0;
        while (length - index >= 8 &&
               (std::memcpy(&eight, bytes.data() + index, 8), (eight & highBits) == 0)) {
            index += 8;
        }
        if (index == length) {
            break;
        }
        UChar32 scalar = 0;
        U8_NEXT(bytes.data(), index, length, scalar);
        if (scalar < 0) {
            return false;
        }
    }
    return true;
}

std::string utf8FromLatin1(std::string_view bytes) {
    std::string result;
    result.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x80) {
            result.push_back(byte);
        } else {
            result.push_back(static_cast<char>(0xC0U | (code >> 6U)));
            result.push_back(static_cast<char>(0x80U | (code & 0x3FU)));
        }
    }
    return result;
}

} // namespace quorvel

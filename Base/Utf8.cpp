#include "Base/Utf8.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace quorvel {
namespace {

constexpr std::uint64_t highBits = 0x8080808080808080U;

} // namespace

bool isUtf8(std::string_view bytes) noexcept {
    const auto length = static_cast<int32_t>(bytes.size());
    for (int32_t index = 0; index < length;) {
        // Most text is ASCII, which is skipped eight bytes at a time.
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

std::optional<std::string> utf8FromUtf16(std::string_view bytes, bool bigEndian) {
    const auto unitAt = [&](std::size_t index) {
        const auto first = static_cast<unsigned char>(bytes[2 * index]);
        const auto second = static_cast<unsigned char>(bytes[2 * index + 1]);
        return static_cast<UChar32>(bigEndian ? first << 8 | second : second << 8 | first);
    };
    const std::size_t units = bytes.size() / 2;
    if (bytes.size() % 2 != 0) {
        return std::nullopt;
    }
    std::string result;
    result.reserve(units);
    for (std::size_t index = 0; index < units; ++index) {
        UChar32 scalar = unitAt(index);
        if (U16_IS_LEAD(scalar) && index + 1 < units && U16_IS_TRAIL(unitAt(index + 1))) {
            scalar = U16_GET_SUPPLEMENTARY(scalar, unitAt(++index));
        }
        if (U_IS_SURROGATE(scalar)) {
            return std::nullopt;
        }
        std::array<char, U8_MAX_LENGTH> buffer{};
        std::int32_t length = 0;
        U8_APPEND_UNSAFE(buffer.data(), length, scalar);
        result.append(buffer.data(), static_cast<std::size_t>(length));
    }
    return result;
}

} // namespace quorvel

#include "Platform/TerminalText.h"

#include <unicode/utf8.h>

#include <cstdio>

namespace quorvel {
namespace {

std::string escaped(UChar32 scalar) {
    if (scalar == '\n') {
        return "\\n";
    }
    if (scalar == '\t') {
        return "\\t";
    }
    char text[16];
    std::snprintf(text, sizeof text, "\\u{%x}", static_cast<unsigned>(scalar));
    return text;
}

std::string escapedBytes(std::string_view bytes) {
    std::string result;
    for (const char byte : bytes) {
        char text[8];
        std::snprintf(text, sizeof text, "\\x%02x", static_cast<unsigned char>(byte));
        result += text;
    }
    return result;
}

} // namespace

bool isHarmful(char32_t scalar) noexcept {
    const bool control = scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0);
    const bool lineBreak = scalar == 0x2028 || scalar == 0x2029;
    const bool direction = scalar == 0x061C || scalar == 0x200E || scalar == 0x200F ||
                           (scalar >= 0x202A && scalar <= 0x202E) ||
                           (scalar >= 0x2066 && scalar <= 0x2069);
    return control || lineBreak || direction;
}

std::string terminalText(std::string_view text) {
    std::string result;
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t index = 0; index < length;) {
        const int32_t start = index;
        UChar32 scalar = 0;
        U8_NEXT(text.data(), index, length, scalar);
        const std::string_view bytes =
            text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(index - start));
        if (scalar < 0) {
            result += escapedBytes(bytes);
        } else if (isHarmful(static_cast<char32_t>(scalar))) {
            result += escaped(scalar);
        } else {
            result += bytes;
        }
    }
    return result;
}

} // namespace quorvel

#include "Base/TerminalText.h"

#include "Base/UnsafeText.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace quorvel {
namespace {

struct Character {
    UChar32 scalar = 0; ///< negative where the bytes are not UTF-8
    std::string_view bytes{};
};

// Returns the first character of a text; its bytes are empty at the end.
Character firstOf(std::string_view text) {
    // No character is longer, and this length always fits the type.
    const auto length =
        static_cast<std::int32_t>(std::min<std::size_t>(text.size(), U8_MAX_LENGTH));
    std::int32_t index = 0;
    UChar32 scalar = 0;
    if (length > 0) {
        U8_NEXT(text.data(), index, length, scalar);
    }
    return {scalar, text.substr(0, static_cast<std::size_t>(index))};
}

// Calls `take` for each character, with whether it is unsafe, until that returns false.
template<typename Taker>
void forEachCharacter(std::string_view text, const Taker& take) {
    UnsafeText unsafe;
    std::string_view unread = text;
    std::u32string following;
    const auto readAhead = [&] {
        const Character next = firstOf(unread);
        unread.remove_prefix(next.bytes.size());
        if (!next.bytes.empty()) {
            following += static_cast<char32_t>(std::max(next.scalar, 0));
        }
    };
    for (std::size_t count = 0; count < UnsafeText::lookAhead; ++count) {
        readAhead();
    }
    while (!text.empty()) {
        const Character character = firstOf(text);
        text.remove_prefix(character.bytes.size());
        following.erase(0, 1);
        readAhead();
        const bool isUnsafe =
            character.scalar < 0 ||
            unsafe.isUnsafeForDisplay(static_cast<char32_t>(character.scalar), following);
        if (!take(character, isUnsafe)) {
            return;
        }
    }
}

std::string escaped(const Character& character) {
    if (character.scalar == '\n') {
        return "\\n";
    }
    if (character.scalar == '\t') {
        return "\\t";
    }
    char text[16];
    if (character.scalar >= 0) {
        std::snprintf(text, sizeof text, "\\u{%x}", static_cast<unsigned>(character.scalar));
        return text;
    }
    std::string result;
    for (const char byte : character.bytes) {
        std::snprintf(text, sizeof text, "\\x%02x", static_cast<unsigned char>(byte));
        result += text;
    }
    return result;
}

// JSON escapes UTF-16 code units.
std::string escapedAsJson(UChar32 scalar) {
    char text[16];
    if (U_IS_BMP(scalar)) {
        std::snprintf(text, sizeof text, "\\u%04x", static_cast<unsigned>(scalar));
    } else {
        std::snprintf(text, sizeof text, "\\u%04x\\u%04x", static_cast<unsigned>(U16_LEAD(scalar)),
                      static_cast<unsigned>(U16_TRAIL(scalar)));
    }
    return text;
}

} // namespace

std::string terminalText(std::string_view text, std::size_t most) {
    std::string result;
    std::size_t count = 0;
    forEachCharacter(text, [&](const Character& character, bool isUnsafe) {
        if (count++ == most) {
            result += "…";
            return false;
        }
        if (isUnsafe) {
            result += escaped(character);
        } else {
            result += character.bytes;
        }
        return true;
    });
    return result;
}

std::string withoutControls(std::string_view text) {
    std::string result;
    for (Character next = firstOf(text); !next.bytes.empty(); next = firstOf(text)) {
        text.remove_prefix(next.bytes.size());
        if (next.scalar >= 0 && !UnsafeText::isControl(static_cast<char32_t>(next.scalar))) {
            result += next.bytes;
        }
    }
    return result;
}

std::string withoutUnsafe(std::string_view text, std::size_t most) {
    std::string result;
    std::size_t count = 0;
    forEachCharacter(text, [&](const Character& character, bool isUnsafe) {
        if (isUnsafe) {
            return true;
        }
        const bool isFull = count++ == most;
        result += isFull ? std::string_view("…") : character.bytes;
        return !isFull;
    });
    return result;
}

std::string escapingUnsafe(std::string_view json) {
    constexpr unsigned char lastPlain = 0x7E;
    if (std::all_of(json.begin(), json.end(),
                    [](char byte) { return static_cast<unsigned char>(byte) <= lastPlain; })) {
        return std::string(json);
    }
    std::string result;
    result.reserve(json.size());
    forEachCharacter(json, [&](const Character& character, bool isUnsafe) {
        // Line breaks occur only between the strings, which have them escaped already.
        if (isUnsafe && character.scalar >= 0x7F) {
            result += escapedAsJson(character.scalar);
        } else {
            result += character.bytes;
        }
        return true;
    });
    return result;
}

} // namespace quorvel

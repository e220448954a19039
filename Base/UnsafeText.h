#pragma once

#include <cstddef>
#include <string_view>

namespace quorvel {

/// Finds the characters of a text that must not be displayed as they are: control characters, line
/// breaks, bidirectional control characters, and invisible characters, which can make two different
/// names look the same. Invisible characters are safe where they have a visible effect: a joiner or
/// non-joiner between letters of scripts that join them and in emoji, a variation selector after a
/// character that has variations, the tags of the flags of England, Scotland and Wales.
class UnsafeText {
public:
    /// The number of following characters that are needed to judge one.
    static constexpr std::size_t lookAhead = 6;

    /// Returns whether it is a control character, a line or paragraph separator, a bidirectional
    /// control character, or no character at all.
    [[nodiscard]] static bool isControl(char32_t scalar) noexcept;

    /// Returns whether the text's next character is unsafe. Takes the characters of one text in
    /// order, each with the `lookAhead` characters that follow it, or fewer at the end.
    [[nodiscard]] bool isUnsafeForDisplay(char32_t scalar, std::u32string_view following) noexcept {
        const bool plain = 0x20 <= scalar && scalar < 0x7F;
        const bool isUnsafe = !plain && isUnsafeAfter(before_, scalar, following);
        before_ = isUnsafe ? 0 : scalar;
        return isUnsafe;
    }

private:
    [[nodiscard]] static bool isUnsafeAfter(char32_t before, char32_t scalar,
                                            std::u32string_view following) noexcept;

    char32_t before_ = 0; ///< 0 after an unsafe one
};

} // namespace quorvel

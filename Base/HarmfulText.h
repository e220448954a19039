#pragma once

#include <cstddef>
#include <string_view>

namespace quorvel {

/// Finds the characters of a text that must not reach a screen as they are: control characters,
/// line breaks, those that turn the writing direction, and those that can't be seen, by which two
/// names may look alike. What can't be seen but belongs there is not harmful: a joiner or
/// non-joiner between letters of scripts that join them and in emoji, a variation selector after a
/// character that has variations, the tags of the flags of England, Scotland and Wales.
class HarmfulText {
public:
    /// How many of the characters that follow are needed to judge one.
    static constexpr std::size_t lookAhead = 6;

    /// Takes the characters of one text in turn, each with those that follow it: `lookAhead` of
    /// them, or all that there are.
    [[nodiscard]] bool isHarmful(char32_t scalar, std::u32string_view following) noexcept {
        const bool plain = 0x20 <= scalar && scalar < 0x7F;
        const bool harmful = !plain && isHarmfulAfter(before_, scalar, following);
        before_ = harmful ? 0 : scalar;
        return harmful;
    }

private:
    [[nodiscard]] static bool isHarmfulAfter(char32_t before, char32_t scalar,
                                             std::u32string_view following) noexcept;

    char32_t before_ = 0; ///< 0 after a harmful one
};

} // namespace quorvel

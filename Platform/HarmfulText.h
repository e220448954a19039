#pragma once

namespace quorvel {

/// Finds the characters of a text that must not reach a screen as they are: control characters,
/// line breaks, those that turn the writing direction, and those that can't be seen, by which two
/// names may look alike. Not harmful is what can't be seen but belongs there: a joiner or
/// non-joiner between letters of scripts that join them and in emoji, a variation selector behind a
/// character that has variations, the tags of a flag.
class HarmfulText {
public:
    /// Takes the characters of one text in turn; `next` is the one that follows, 0 at the end.
    [[nodiscard]] bool isHarmful(char32_t scalar, char32_t next) noexcept {
        const bool plain = 0x20 <= scalar && scalar < 0x7F;
        const bool harmful = !plain && isHarmfulBehind(before_, scalar, next);
        before_ = harmful ? 0 : scalar;
        return harmful;
    }

private:
    [[nodiscard]] static bool isHarmfulBehind(char32_t before, char32_t scalar,
                                              char32_t next) noexcept;

    char32_t before_ = 0; ///< 0 behind a harmful one
};

} // namespace quorvel

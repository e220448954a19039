#pragma once

namespace quorvel {

/// Returns whether the character ends a line: U+000A to U+000D, U+0085, U+2028 or U+2029.
[[nodiscard]] constexpr bool isLineBreak(char32_t scalar) noexcept {
    return (scalar >= 0x0A && scalar <= 0x0D) || scalar == 0x85 || scalar == 0x2028 ||
           scalar == 0x2029;
}

} // namespace quorvel

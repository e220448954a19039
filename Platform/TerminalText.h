#pragma once

#include <string>
#include <string_view>

namespace quorvel {

/// Whether a scalar must not reach a screen as it is: control characters, line breaks and those
/// that turn the writing direction.
[[nodiscard]] bool isHarmful(char32_t scalar) noexcept;

/// `text` on one line and harmless to a terminal: control characters, characters that turn the
/// writing direction and bytes that are no UTF-8 are shown as escapes such as "\n" or "\u{1b}".
[[nodiscard]] std::string terminalText(std::string_view text);

} // namespace quorvel

#pragma once

#include <string>
#include <string_view>

namespace quorvel {

/// `text` on one line and harmless to a terminal: control characters, characters that turn the
/// writing direction and bytes that are no UTF-8 are shown as escapes such as "\n" or "\u{1b}".
[[nodiscard]] std::string terminalText(std::string_view text);

} // namespace quorvel

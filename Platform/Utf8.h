#pragma once

#include <string>
#include <string_view>

namespace quorvel {

/// Whether the bytes are well-formed UTF-8.
[[nodiscard]] bool isUtf8(std::string_view bytes) noexcept;

/// The text that the bytes spell in ISO 8859-1, as UTF-8.
[[nodiscard]] std::string utf8FromLatin1(std::string_view bytes);

} // namespace quorvel

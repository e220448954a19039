#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// Whether the bytes are well-formed UTF-8.
[[nodiscard]] bool isUtf8(std::string_view bytes) noexcept;

/// The text that the bytes spell in ISO 8859-1, as UTF-8.
[[nodiscard]] std::string utf8FromLatin1(std::string_view bytes);

/// The text that the bytes spell in UTF-16, as UTF-8; a byte-order mark stays. std::nullopt if
/// they are not well-formed.
[[nodiscard]] std::optional<std::string> utf8FromUtf16(std::string_view bytes, bool bigEndian);

} // namespace quorvel

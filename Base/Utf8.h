#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// Returns whether the bytes are well-formed UTF-8.
[[nodiscard]] bool isUtf8(std::string_view bytes) noexcept;

/// Converts ISO 8859-1 to UTF-8.
[[nodiscard]] std::string utf8FromLatin1(std::string_view bytes);

/// Converts UTF-16 to UTF-8, keeping a byte-order mark. Returns std::nullopt if the bytes are not
/// well-formed.
[[nodiscard]] std::optional<std::string> utf8FromUtf16(std::string_view bytes, bool bigEndian);

} // namespace quorvel

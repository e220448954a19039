#pragma once

#include <cstddef>
#include <string>

namespace quorvel {

/// The length of a UUID as text.
inline constexpr std::size_t uuidLength = 36;

/// Returns a new random UUID in upper case, such as "3F2504E0-4F89-41D3-9A0C-0305E82C3301".
[[nodiscard]] std::string randomUuid();

} // namespace quorvel

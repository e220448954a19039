#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

/// Checks a property list's structure before it is parsed: finds nesting that would exhaust the
/// stack and references that would expand without bound, in time linear in the list's size.
namespace quorvel::PropertyListLimits {

inline constexpr std::size_t maximumDepth = 256;
/// The memory that reading a list may take: the parser's tree and our own values together.
inline constexpr std::size_t maximumBytes = std::size_t{64} << 20U;

/// Returns an upper bound, in bytes, of the memory needed to read the list (in either form).
/// Returns std::nullopt if that would exceed `maximumBytes`, or if the list nests too deeply or is
/// a malformed binary one. May return a value for XML that is not a property list, which the parser
/// rejects.
[[nodiscard]] std::optional<std::size_t> neededBytes(std::string_view bytes);

} // namespace quorvel::PropertyListLimits

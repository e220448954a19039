#pragma once

#include <cstddef>
#include <string_view>

/// A look at a property list's structure before a parser builds it: nesting that would exhaust the
/// stack and references that would unfold without end are found here, in time linear in its size.
namespace quorvel::PropertyListLimits {

inline constexpr std::size_t maximumDepth = 256;
inline constexpr std::size_t maximumValues = 1'000'000;

/// Whether the bytes (of either form) surely stay within both limits. XML that is no property list
/// may count as within, since the parser refuses it; a malformed binary one never does.
[[nodiscard]] bool within(std::string_view bytes);

} // namespace quorvel::PropertyListLimits

#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

/// A look at a property list's structure before a parser builds it: nesting that would exhaust the
/// stack and references that would unfold without end are found here, in time linear in its size.
namespace quorvel::PropertyListLimits {

inline constexpr std::size_t maximumDepth = 256;
/// What reading a list may take, the parser's tree and our own values together.
inline constexpr std::size_t maximumBytes = std::size_t{64} << 20U;

/// How many bytes it takes at most to read the list (of either form). std::nullopt if that would be
/// more than `maximumBytes` or the list nests too deeply. XML that is not a property list may get
/// an answer, since the parser refuses it; a malformed binary one never does.
[[nodiscard]] std::optional<std::size_t> neededBytes(std::string_view bytes);

} // namespace quorvel::PropertyListLimits

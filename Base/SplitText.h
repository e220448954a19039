#pragma once

#include <algorithm>
#include <string_view>

namespace quorvel {

/// Removes the first part of a list, and the separator after it, and returns the part. Parts may be
/// empty; a separator at the end is not followed by an empty part.
[[nodiscard]] constexpr std::string_view takePart(std::string_view& list, char separator) noexcept {
    const std::string_view part = list.substr(0, list.find(separator));
    list.remove_prefix(std::min(part.size() + 1, list.size()));
    return part;
}

} // namespace quorvel

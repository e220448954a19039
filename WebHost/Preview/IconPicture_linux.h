#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// Decodes a site's picture of any format that the system's loaders know, and returns it as a PNG
/// file of at most `largestSide` pixels each way; std::nullopt if it can't be decoded or is too
/// large to be an icon.
[[nodiscard]] std::optional<std::string> pngOf(std::string_view picture, int largestSide);

} // namespace quorvel

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The container's own packing: a byte below 128 says how many bytes less one follow as they are,
/// any other how often, less 125, the next byte is repeated.
namespace quorvel {

/// Unpacks exactly `size` bytes; nothing when the packed bytes end before. What follows is ignored.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> unpackRuns(std::string_view packed,
                                                                  std::size_t size);

/// Appends the packed form of `bytes` to `packed`.
void packRuns(std::span<const std::uint8_t> bytes, std::string& packed);

} // namespace quorvel

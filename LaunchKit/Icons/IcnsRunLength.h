#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The container's run-length encoding: a byte n below 128 is followed by n + 1 literal bytes, any
/// other by one byte that is repeated n - 125 times.
namespace quorvel {

/// Unpacks exactly `size` bytes and ignores the rest; `std::nullopt` if there are fewer.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> unpackRuns(std::string_view packed,
                                                                  std::size_t size);

/// Appends the packed form of `bytes` to `packed`.
void packRuns(std::span<const std::uint8_t> bytes, std::string& packed);

} // namespace quorvel

#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace quorvel {

struct InstanceConfig;

/// Returns the sizes of all files in the clone's data folder together: 0 if there is none. Returns
/// std::nullopt if there are more than `most` items, or once `cancelled` is true. What can't be
/// read doesn't count. Any thread.
[[nodiscard]] std::optional<std::uintmax_t>
dataSizeOf(const InstanceConfig& config, std::size_t most, const std::atomic<bool>& cancelled);

} // namespace quorvel

#pragma once

#include <array>
#include <cstdint>

/// The fixed colors of the 4- and 8-bit icons, as 0xFFRRGGBB.
namespace quorvel {

/// Returns the colors of 4-bit icons.
[[nodiscard]] const std::array<std::uint32_t, 16>& icnsColors16();
/// Returns the colors of 8-bit icons.
[[nodiscard]] const std::array<std::uint32_t, 256>& icnsColors256();

} // namespace quorvel

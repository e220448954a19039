#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace quorvel {

/// Returns the 16 bytes of the UUID by which the system keeps the web data of the clone with that
/// data folder. It depends on the folder's path, so that a copy of a folder has data of its own.
[[nodiscard]] std::array<std::uint8_t, 16> storeIdentifier(std::string_view home);

} // namespace quorvel

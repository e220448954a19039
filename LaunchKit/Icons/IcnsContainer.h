#pragma once

#include "LaunchKit/Icons/IcnsTypes.h"

#include <string_view>
#include <vector>

namespace quorvel {

/// One chunk of a container; `payload` is a view into the parsed bytes.
struct IcnsChunk {
    IcnsCode code = 0;
    std::string_view payload{};
};

/// The images and masks of one icon, in the order of the file.
using IcnsFamily = std::vector<IcnsChunk>;

/// Returns the families of a container: its own first, then the nested ones in the order of the
/// file. Empty if the bytes are not a container. Only complete chunks of known types are included;
/// an invalid chunk size ends the family. For any input this takes time in proportion to its size
/// and returns at most `maximumIcnsChunks` chunks.
[[nodiscard]] std::vector<IcnsFamily> icnsFamilies(std::string_view bytes);

/// Returns whether the bytes begin with a container's header.
[[nodiscard]] bool isIcns(std::string_view bytes) noexcept;

inline constexpr std::size_t maximumIcnsChunks = 512;

} // namespace quorvel

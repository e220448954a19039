#pragma once

#include "LaunchKit/Icons/IcnsTypes.h"

#include <string_view>
#include <vector>

namespace quorvel {

/// One chunk of a container; `payload` lies in the bytes that were parsed.
struct IcnsChunk {
    IcnsCode code = 0;
    std::string_view payload{};
};

/// The images and masks of one icon, in the order of the file.
using IcnsFamily = std::vector<IcnsChunk>;

/// The families of a container: its own first, then the nested ones in the order of the file.
/// Empty when the bytes are no container. Only whole chunks of known types are given; a size that
/// lies ends its family. However the bytes look, this takes time in proportion to their number,
/// and gives at most `maximumIcnsChunks` chunks.
[[nodiscard]] std::vector<IcnsFamily> icnsFamilies(std::string_view bytes);

/// Whether the bytes begin as a container does.
[[nodiscard]] bool isIcns(std::string_view bytes) noexcept;

inline constexpr std::size_t maximumIcnsChunks = 512;

} // namespace quorvel

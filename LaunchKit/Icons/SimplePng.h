#pragma once

#include <string_view>

namespace quorvel {

/// Returns whether the bytes are laid out as a simple PNG file of at most `largestSide` pixels each
/// way: 8-bit RGB or RGBA, not interlaced, with nothing but its pixels, complete, and with nothing
/// after its end. Does not decompress anything.
[[nodiscard]] bool isSimplePng(std::string_view bytes, unsigned largestSide);

} // namespace quorvel

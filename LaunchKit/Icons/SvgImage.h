#pragma once

#include <QImage>

#include <cstddef>
#include <string_view>

/// Drawings in SVG files, as untrusted bytes.
namespace quorvel {

/// Larger files are not drawn.
inline constexpr std::size_t maximumSvgSize = std::size_t{4} << 20U;

/// Drawings of more elements, counting each as often as it is repeated, are not drawn.
inline constexpr std::size_t maximumSvgElements = 20000;

/// Returns the drawing as a square of `side` pixels, centered, in the format of `pngImage`. Null if
/// the bytes are not an SVG drawing, or one that is too large, refers to other files, or can't be
/// drawn. Any thread.
[[nodiscard]] QImage svgImage(std::string_view bytes, int side);

} // namespace quorvel

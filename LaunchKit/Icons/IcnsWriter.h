#pragma once

#include <QImage>

#include <span>
#include <string>

namespace quorvel {

/// Returns the bytes of one entry of an icon container that shows `image`, a square of 16, 32, 64,
/// 128, 256, 512 or 1024 pixels: type, size and payload. The two smallest are run-length coded
/// planes, the others PNG files marked as sRGB. Empty if the image has another size or can't be
/// encoded.
[[nodiscard]] std::string icnsChunk(const QImage& image);

/// Returns the entry for a screen of double density, which shows `image` at half its size: a square
/// of 32, 64, 256, 512 or 1024 pixels, as a PNG file. Empty as above.
[[nodiscard]] std::string icnsDoubleChunk(const QImage& image);

/// Returns a container with these entries, in this order.
[[nodiscard]] std::string icnsFile(std::span<const std::string> chunks);

/// Returns `image` as a PNG file marked as sRGB; empty if encoding fails.
[[nodiscard]] std::string pngBytes(const QImage& image);

} // namespace quorvel

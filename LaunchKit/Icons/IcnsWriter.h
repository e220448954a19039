#pragma once

#include <QImage>

#include <span>
#include <string>

namespace quorvel {

/// The bytes of one entry of an icon container that shows `image`, a square of 16, 32, 64, 128,
/// 256, 512 or 1024 pixels: type, size and payload. The two smallest are run-length coded planes,
/// the others PNG files marked as sRGB. Empty when the image has another size or can't be encoded.
[[nodiscard]] std::string icnsChunk(const QImage& image);

/// The entry for a screen of double density, which shows `image` at half its size: a square of 32,
/// 64, 256, 512 or 1024 pixels, as a PNG file. Empty as above.
[[nodiscard]] std::string icnsDoubleChunk(const QImage& image);

/// A container of these entries, in this order.
[[nodiscard]] std::string icnsFile(std::span<const std::string> chunks);

/// `image` as a PNG file with an sRGB marker; empty when that fails.
[[nodiscard]] std::string pngBytes(const QImage& image);

} // namespace quorvel

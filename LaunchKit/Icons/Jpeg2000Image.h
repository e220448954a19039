#pragma once

#include <QImage>
#include <QSize>

#include <string_view>

/// JPEG 2000 images, as whole files or bare codestreams.
namespace quorvel {

/// Returns whether the bytes begin like a file or a codestream.
[[nodiscard]] bool isJpeg2000(std::string_view bytes) noexcept;

/// Wider or higher images are not read.
inline constexpr int maximumJpeg2000Side = 16384;

/// Returns the size that the codestream declares; invalid if there is none, or if it has more than
/// four components or more tiles than an icon could need.
[[nodiscard]] QSize jpeg2000Size(std::string_view bytes);

/// Returns the image with straight alpha; null if it can't be decoded completely or is not of this
/// size. An image whose components would take more than 64 MiB is returned at a half, a quarter and
/// so on of its size, if the file contains it at that size; otherwise null. Reads gray and color,
/// with and without alpha, of up to 16 bits.
[[nodiscard]] QImage jpeg2000Image(std::string_view bytes, QSize size);

} // namespace quorvel

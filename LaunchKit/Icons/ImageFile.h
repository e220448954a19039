#pragma once

#include <QImage>
#include <QSize>

#include <string_view>

/// Image files of the common kinds, as bytes that nobody vouches for.
namespace quorvel {

/// No image that is wider or higher is decoded whole.
inline constexpr int maximumImageSide = 4096;

/// Nor is one wider or higher than this decoded scaled.
inline constexpr int maximumScaledSide = 16384;

[[nodiscard]] bool isPng(std::string_view bytes) noexcept;

/// The size in a PNG's header; invalid when there is none.
[[nodiscard]] QSize pngSize(std::string_view bytes);

/// A PNG image as 8-bit sRGB pixels with straight alpha, whatever its depth and color type; null
/// when it is broken, not whole, or not of this size.
[[nodiscard]] QImage pngImage(std::string_view bytes, QSize size);

/// The widest image in a PNG, JPEG, JPEG 2000, GIF, BMP, TIFF or WebP file that can be decoded, as
/// far as Qt reads it here, in the form of `pngImage`; the first of equally wide ones. Null if
/// there is none. Beyond `maximumImageSide` only PNG and JPEG that can be decoded piece by piece
/// (not interlaced) are read, scaled to fit 2048 pixels. JPEG 2000 has its own limits, those of
/// `jpeg2000Image`. Formats that hold drawings or scripts rather than pixels are left alone.
[[nodiscard]] QImage widestImage(std::string_view bytes);

/// `image` as 8-bit sRGB pixels with straight alpha.
[[nodiscard]] QImage standardPixels(QImage image);

} // namespace quorvel

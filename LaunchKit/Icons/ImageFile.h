#pragma once

#include <QImage>
#include <QSize>

#include <string_view>

/// Image files of the common formats, as untrusted bytes.
namespace quorvel {

/// Wider or higher images are not decoded at their full size.
inline constexpr int maximumImageSide = 4096;

/// Images wider or higher than this are not decoded scaled down either.
inline constexpr int maximumScaledSide = 16384;

/// Returns whether the bytes begin with a PNG signature.
[[nodiscard]] bool isPng(std::string_view bytes) noexcept;

/// Returns the size in a PNG's header; invalid if there is none.
[[nodiscard]] QSize pngSize(std::string_view bytes);

/// Returns a PNG image of any depth and color type as 8-bit sRGB pixels with straight alpha; null
/// if it is broken, incomplete, or not of this size.
[[nodiscard]] QImage pngImage(std::string_view bytes, QSize size);

/// Returns the widest image in a PNG, JPEG, JPEG 2000, GIF, BMP, TIFF or WebP file that can be
/// decoded, in the format of `pngImage`; the first of equally wide ones. Returns null if there
/// is none or Qt lacks the format. Beyond `maximumImageSide` only PNG and JPEG that can be decoded
/// piece by piece (not interlaced) are read, scaled to fit 2048 pixels. JPEG 2000 has its own
/// limits, those of `jpeg2000Image`. Formats that contain drawings or scripts, not pixels, are not
/// read.
[[nodiscard]] QImage widestImage(std::string_view bytes);

/// Returns `image` as 8-bit sRGB pixels with straight alpha.
[[nodiscard]] QImage standardPixels(QImage image);

} // namespace quorvel

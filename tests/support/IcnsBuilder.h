#pragma once

#include <QImage>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Writes icon containers of every kind, valid and invalid ones.
namespace quorvel::testing {

/// An entry: type, size and payload. `declaredSize` goes in place of the true size when not 0.
[[nodiscard]] std::string icnsEntry(std::string_view type, std::string_view payload,
                                    std::uint32_t declaredSize = 0);

/// A container of these entries.
[[nodiscard]] std::string icnsOf(const std::vector<std::string>& entries);

/// A PNG file of the image in its own format (palette, gray, 16 bits and so on).
[[nodiscard]] std::string pngOf(const QImage& image);

/// The content of a JPEG 2000 image.
enum class Jpeg2000Form { gray, grayAlpha, rgb, rgba, ycc };

/// A lossless JPEG 2000 image, as a file or as a bare codestream.
[[nodiscard]] std::string jpeg2000Of(const QImage& image, Jpeg2000Form form,
                                     bool bareCodestream = false);

/// The payloads of the container's own forms; images are square and of `Format_ARGB32`.
[[nodiscard]] std::string argbOf(const QImage& image);
[[nodiscard]] std::string rle24Of(const QImage& image); ///< for it32, put four zeros before it
[[nodiscard]] std::string raw32Of(const QImage& image);
[[nodiscard]] std::string alphaMaskOf(const QImage& image);
[[nodiscard]] std::string bitmapOf(const QImage& image);  ///< black where dark, without the mask
[[nodiscard]] std::string bitMaskOf(const QImage& image); ///< set where the alpha is above half

/// A container with an entry of every kind, nested families included.
[[nodiscard]] std::string icnsOfEveryKind();

/// A square picture with gradients, flat parts, and alpha from none to full; `seed` varies it.
[[nodiscard]] QImage testPicture(int side, unsigned seed = 0);

/// The same without transparency.
[[nodiscard]] QImage opaquePicture(int side, unsigned seed = 0);

} // namespace quorvel::testing

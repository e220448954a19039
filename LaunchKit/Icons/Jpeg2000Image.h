#pragma once

#include <QImage>
#include <QSize>

#include <string_view>

/// JPEG 2000 images, as whole files or bare codestreams.
namespace quorvel {

[[nodiscard]] bool isJpeg2000(std::string_view bytes) noexcept;

/// No image that is wider or higher is read.
inline constexpr int maximumJpeg2000Side = 16384;

/// The size that the codestream declares; invalid when there is none, or when it has more than four
/// components, which no icon has, or more tiles than an icon could need.
[[nodiscard]] QSize jpeg2000Size(std::string_view bytes);

/// The image with straight alpha; null when it can't be decoded whole or is not of this size. One
/// whose components would take more than 64 MiB comes at a half, a quarter and so on of its size,
/// as the file has it; null where it does not. Gray and color, each with and without alpha, of up
/// to 16 bits, are read.
[[nodiscard]] QImage jpeg2000Image(std::string_view bytes, QSize size);

} // namespace quorvel

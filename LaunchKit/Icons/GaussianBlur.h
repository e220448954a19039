#pragma once

#include <QImage>

namespace quorvel {

/// An 8-bit coverage image (`QImage::Format_Alpha8`) blurred by a Gaussian of `deviation` pixels
/// and moved down by `drop` pixels, which may be a fraction. Outside of the image is no coverage.
[[nodiscard]] QImage gaussianBlurred(const QImage& coverage, double deviation, double drop);

} // namespace quorvel

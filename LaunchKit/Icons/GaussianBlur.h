#pragma once

#include <QImage>

namespace quorvel {

/// Returns an 8-bit coverage image (`QImage::Format_Alpha8`) blurred by a Gaussian of `deviation`
/// pixels and moved down by `drop` pixels, which may be a fraction. The area outside the image
/// counts as empty.
[[nodiscard]] QImage gaussianBlurred(const QImage& coverage, double deviation, double drop);

} // namespace quorvel

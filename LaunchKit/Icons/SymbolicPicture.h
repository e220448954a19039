#pragma once

#include <string>

class QImage;

namespace quorvel {

/// Returns a drawing (SVG) of the picture in one color, more opaque where the picture is darker.
/// Desktops replace the color by that of their texts.
[[nodiscard]] std::string symbolicPicture(const QImage& picture);

} // namespace quorvel

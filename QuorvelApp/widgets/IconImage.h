#pragma once

#include <QImage>

#include <filesystem>

namespace quorvel {

/// Returns the image of a file or bundle, scaled to fit a square of `pixels`: a bundle's own icon,
/// or the image in an icon container, a PNG or an SVG file. Returns a null image for anything else,
/// including malformed files and those that would take too much memory or time. Any thread.
[[nodiscard]] QImage loadIconImage(const std::filesystem::path& path, int pixels);

} // namespace quorvel

#pragma once

#include <QImage>

#include <filesystem>

namespace quorvel {

/// Returns the image of a file or bundle, scaled to fit a square of `pixels`: a bundle's own icon,
/// or what an `.icns` file holds. Returns a null image for anything else, hostile files included.
/// May be called on any thread.
[[nodiscard]] QImage loadIconImage(const std::filesystem::path& path, int pixels);

} // namespace quorvel

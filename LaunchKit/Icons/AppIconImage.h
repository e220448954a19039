#pragma once

#include <QImage>

#include <filesystem>

/// The picture of an application's icon, in any form that an application may have: an icon
/// container, a PNG, another raster format, or an SVG drawing. As in `IconImage`, but drawings are
/// read too, and drawn at the size that is asked for.
namespace quorvel {

/// Returns the widest image; a drawing at 1024 pixels.
[[nodiscard]] QImage widestAppIconImage(const std::filesystem::path& file);

/// Returns the image to show at `side` pixels; not scaled, unless it is a drawing.
[[nodiscard]] QImage appIconImageNear(const std::filesystem::path& file, int side);

} // namespace quorvel

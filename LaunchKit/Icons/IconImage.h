#pragma once

#include <QImage>

#include <filesystem>

/// The picture in an icon file: an icon container, a PNG, or another raster format that Qt reads.
/// All are 8-bit sRGB with straight alpha, and null if none can be read. Files are read with the
/// limits of `IcnsFile`; any thread.
namespace quorvel {

/// Returns the widest image; the first of equally wide ones.
[[nodiscard]] QImage widestIconImage(const std::filesystem::path& file);

/// Returns the image to show at `side` pixels, as `IcnsFile::nearest` chooses it; not scaled.
[[nodiscard]] QImage iconImageNear(const std::filesystem::path& file, int side);

} // namespace quorvel

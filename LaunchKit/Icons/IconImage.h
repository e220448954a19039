#pragma once

#include <QImage>

#include <filesystem>

/// The picture in an icon file of any kind: an icon container, a PNG, or another format of pixels
/// that Qt reads here. All are 8-bit sRGB with straight alpha, null when there is none that can be
/// read. Files are read as `IcnsFile` does; any thread.
namespace quorvel {

/// The widest image; the first of equally wide ones.
[[nodiscard]] QImage widestIconImage(const std::filesystem::path& file);

/// The image to show at `side` pixels, as `IcnsFile::nearest` chooses it; not scaled.
[[nodiscard]] QImage iconImageNear(const std::filesystem::path& file, int side);

} // namespace quorvel

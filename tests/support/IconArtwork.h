#pragma once

#include <QImage>

#include <array>

/// Application icons drawn at any size, made to resemble real ones.
namespace quorvel::testing {

[[nodiscard]] QImage chatIcon(int side);   ///< a saturated rounded square with a white bubble
[[nodiscard]] QImage paperIcon(int side);  ///< almost white, with fine lines
[[nodiscard]] QImage planetIcon(int side); ///< a dark disc with a ring, much of it transparent

using IconArtist = QImage (*)(int side);
inline constexpr std::array<IconArtist, 3> iconArtists{chatIcon, paperIcon, planetIcon};

} // namespace quorvel::testing

#pragma once

#include "LaunchKit/Icons/IcnsContainer.h"

#include <QImage>

#include <string_view>

/// The container's own pixel forms. Each gives 8-bit pixels with straight alpha, or a null image
/// when the payload is too short for the size.
namespace quorvel {

/// Planes of alpha, red, green and blue behind "ARGB", packed as one.
[[nodiscard]] QImage argbImage(std::string_view payload, int side);

/// Whether a payload of 24-bit color holds plain 32-bit pixels rather than packed planes.
[[nodiscard]] bool isRaw32(std::string_view payload, const IcnsType& type);

/// Color without alpha. The transparency is the family's 8-bit mask, else its 1-bit mask; without
/// either the image is opaque.
[[nodiscard]] QImage rgbImage(std::string_view payload, const IcnsType& type,
                              const IcnsFamily& family);

/// The 8-, 4- and 1-bit forms with the family's 1-bit mask.
[[nodiscard]] QImage legacyImage(std::string_view payload, const IcnsType& type,
                                 const IcnsFamily& family);

} // namespace quorvel

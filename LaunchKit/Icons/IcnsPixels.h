#pragma once

#include "LaunchKit/Icons/IcnsContainer.h"

#include <QImage>

#include <string_view>

/// The container's own pixel formats. Each function returns 8-bit pixels with straight alpha, or a
/// null image if the payload is too short for the size.
namespace quorvel {

/// Reads planes of alpha, red, green and blue after "ARGB", packed as one.
[[nodiscard]] QImage argbImage(std::string_view payload, int side);

/// Returns whether a payload of 24-bit color contains plain 32-bit pixels, not packed planes.
[[nodiscard]] bool isRaw32(std::string_view payload, const IcnsType& type);

/// Reads color without alpha. The transparency is the family's 8-bit mask, or else its 1-bit mask;
/// without either the image is opaque.
[[nodiscard]] QImage rgbImage(std::string_view payload, const IcnsType& type,
                              const IcnsFamily& family);

/// Reads the 8-, 4- and 1-bit formats with the family's 1-bit mask.
[[nodiscard]] QImage legacyImage(std::string_view payload, const IcnsType& type,
                                 const IcnsFamily& family);

} // namespace quorvel

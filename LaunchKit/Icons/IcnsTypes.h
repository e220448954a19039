#pragma once

#include "LaunchKit/Icons/Bytes.h"

#include <cstdint>
#include <string>
#include <string_view>

/// The image types of the icon container: the size and the format of each.
namespace quorvel {

/// A chunk's four-character type, as the number that the file holds.
using IcnsCode = std::uint32_t;

/// Returns the type with that name of four characters; 0 for an empty name.
[[nodiscard]] constexpr IcnsCode icnsCode(std::string_view name) {
    return bigEndian32(name);
}

/// Returns a type's four characters.
[[nodiscard]] std::string icnsName(IcnsCode code);

/// The form of a type's payload.
enum class IcnsForm {
    file,      ///< a PNG or JPEG 2000 file, or planes after "ARGB"
    fileOrRgb, ///< such a file, or 24-bit color without alpha
    rgb,       ///< 24-bit color as three packed planes, or 32-bit pixels; alpha is in `alphaMask`
    indexed8,  ///< one byte per pixel into the system's 256 colors
    indexed4,  ///< four bits per pixel into the system's 16 colors
    bitmap,    ///< one bit per pixel, set bits black; a 1-bit mask may follow
};

/// One image type.
struct IcnsType {
    IcnsCode code = 0;
    IcnsForm form = IcnsForm::file;
    int width = 0;
    int height = 0;
    IcnsCode alphaMask = 0; ///< the type of the 8-bit mask that belongs to it; 0 for none
    IcnsCode bitMask = 0;   ///< the bitmap type whose 1-bit mask it uses; 0 for none
};

/// Returns the image type with that code; null if the code is not that of an image.
[[nodiscard]] const IcnsType* icnsType(IcnsCode code);

/// Returns whether a type's payload is a nested family: the icon's selected, hovered or dark form.
[[nodiscard]] bool isNestedFamily(IcnsCode code);

/// Returns whether a type is an 8-bit mask.
[[nodiscard]] bool isAlphaMask(IcnsCode code);

} // namespace quorvel

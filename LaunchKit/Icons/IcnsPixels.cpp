#include "LaunchKit/Icons/IcnsPixels.h"

#include "LaunchKit/Icons/Bytes.h"
#include "LaunchKit/Icons/IcnsPalette.h"
#include "LaunchKit/Icons/IcnsRunLength.h"

#include <algorithm>

namespace quorvel {
namespace {

constexpr QRgb alphaBits = 0xFF000000;

std::size_t pixelCount(const IcnsType& type) {
    return static_cast<std::size_t>(type.width) * static_cast<std::size_t>(type.height);
}

std::uint8_t byteAt(std::string_view bytes, std::size_t index) {
    return static_cast<std::uint8_t>(bytes[index]);
}

bool bitAt(std::string_view bytes, std::size_t index) {
    return ((byteAt(bytes, index / 8) >> (7 - index % 8)) & 1U) != 0;
}

// Returns an image of the pixels that `pixel` returns for 0, 1, 2 and so on, row by row.
template<typename Pixel>
QImage imageOf(int width, int height, Pixel pixel) {
    QImage image(width, height, QImage::Format_ARGB32);
    std::size_t index = 0;
    for (int y = 0; y < height && !image.isNull(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::generate_n(line, width, [&] { return static_cast<QRgb>(pixel(index++)); });
    }
    return image;
}

// Returns the payload of the first chunk of that type with at least `size` bytes; empty if there is
// none.
std::string_view payloadOf(const IcnsFamily& family, IcnsCode code, std::size_t size) {
    const auto chunk = std::find_if(family.begin(), family.end(), [&](const IcnsChunk& each) {
        return each.code == code && each.payload.size() >= size;
    });
    return code == 0 || chunk == family.end() ? std::string_view{} : chunk->payload;
}

// Returns the second half of the bitmap that contains the type's 1-bit mask; empty if there is
// none.
std::string_view bitMaskOf(const IcnsType& type, const IcnsFamily& family) {
    const std::size_t size = pixelCount(type) / 8;
    const std::string_view bitmap = payloadOf(family, type.bitMask, 2 * size);
    return bitmap.empty() ? bitmap : bitmap.substr(size, size);
}

void setAlpha(QImage& image, const IcnsType& type, const IcnsFamily& family) {
    const std::string_view alpha = payloadOf(family, type.alphaMask, pixelCount(type));
    const std::string_view bits = bitMaskOf(type, family);
    if (image.isNull() || (alpha.empty() && bits.empty())) {
        return;
    }
    const auto* pixels = reinterpret_cast<const QRgb*>(image.constBits());
    image = imageOf(type.width, type.height, [&](std::size_t index) {
        const QRgb level = alpha.empty() ? (bitAt(bits, index) ? 0xFFU : 0U) : byteAt(alpha, index);
        return (pixels[index] & ~alphaBits) | level << 24U;
    });
}

QImage rawImage(std::string_view payload, const IcnsType& type) {
    return imageOf(type.width, type.height, [&](std::size_t index) {
        return alphaBits | bigEndian32(payload.substr(4 * index));
    });
}

QImage packedImage(std::string_view payload, const IcnsType& type) {
    const std::size_t count = pixelCount(type);
    const auto planes = unpackRuns(payload, 3 * count);
    if (!planes) {
        return {};
    }
    return imageOf(type.width, type.height, [&](std::size_t index) {
        return qRgb((*planes)[index], (*planes)[count + index], (*planes)[2 * count + index]);
    });
}

// In the largest of the color types, four zero bytes precede the planes.
std::string_view withoutPadding(std::string_view payload, const IcnsType& type) {
    constexpr std::string_view padding("\0\0\0\0", 4);
    const bool padded = type.code == icnsCode("it32") && payload.starts_with(padding) &&
                        payload.size() != 4 * pixelCount(type);
    return payload.substr(padded ? padding.size() : 0);
}

QImage opaqueLegacyImage(std::string_view payload, const IcnsType& type) {
    const std::size_t bits = type.form == IcnsForm::indexed8   ? 8
                             : type.form == IcnsForm::indexed4 ? 4
                                                               : 1;
    if (payload.size() * 8 < pixelCount(type) * bits) {
        return {};
    }
    return imageOf(type.width, type.height, [&](std::size_t index) {
        if (bits == 8) {
            return icnsColors256()[byteAt(payload, index)];
        }
        if (bits == 4) {
            return icnsColors16()[(byteAt(payload, index / 2) >> (index % 2 == 0 ? 4U : 0U)) & 15U];
        }
        return bitAt(payload, index) ? 0xFF000000U : 0xFFFFFFFFU;
    });
}

} // namespace

QImage argbImage(std::string_view payload, int side) {
    const std::size_t count = static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
    const auto planes =
        unpackRuns(payload.substr(std::min<std::size_t>(4, payload.size())), 4 * count);
    if (!planes) {
        return {};
    }
    return imageOf(side, side, [&](std::size_t index) {
        return qRgba((*planes)[count + index], (*planes)[2 * count + index],
                     (*planes)[3 * count + index], (*planes)[index]);
    });
}

bool isRaw32(std::string_view payload, const IcnsType& type) {
    return withoutPadding(payload, type).size() == 4 * pixelCount(type);
}

QImage rgbImage(std::string_view payload, const IcnsType& type, const IcnsFamily& family) {
    const std::string_view pixels = withoutPadding(payload, type);
    QImage image = isRaw32(payload, type) ? rawImage(pixels, type) : packedImage(pixels, type);
    setAlpha(image, type, family);
    return image;
}

QImage legacyImage(std::string_view payload, const IcnsType& type, const IcnsFamily& family) {
    QImage image = opaqueLegacyImage(payload, type);
    setAlpha(image, type, family);
    return image;
}

} // namespace quorvel

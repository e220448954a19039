#include "LaunchKit/Icons/IcnsWriter.h"

#include "LaunchKit/Icons/IcnsRunLength.h"

#include <QBuffer>
#include <QByteArray>
#include <QImageWriter>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>
#include <vector>

namespace quorvel {
namespace {

// The zlib level beyond which files shrink little while time grows fast, on Qt's scale from 0 to
// 100.
constexpr int compressionLevel = 5;
constexpr int compression = (compressionLevel * 100 + 8) / 9;

constexpr std::array<std::pair<int, std::string_view>, 7> chunkTypes{{
    {1024, "ic10"},
    {512, "ic09"},
    {256, "ic08"},
    {128, "ic07"},
    {64, "ic12"},
    {32, "ic05"},
    {16, "ic04"},
}};

constexpr std::array<std::pair<int, std::string_view>, 5> doubleChunkTypes{{
    {1024, "ic10"},
    {512, "ic14"},
    {256, "ic13"},
    {64, "ic12"},
    {32, "ic11"},
}};

constexpr int largestPlanes = 32;

std::string bigEndianBytes(std::size_t number) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        bytes += static_cast<char>((number >> shift) & 0xFFU);
    }
    return bytes;
}

std::string chunk(std::string_view type, std::string_view payload) {
    return std::string(type) + bigEndianBytes(payload.size() + 8) + std::string(payload);
}

std::string chunkUnlessEmpty(std::string_view type, const std::string& payload) {
    return payload.empty() ? payload : chunk(type, payload);
}

// Returns an empty text if no type has this size.
std::string_view typeFor(const QImage& image,
                         std::span<const std::pair<int, std::string_view>> types) {
    for (const auto& [side, type] : types) {
        if (image.size() == QSize(side, side)) {
            return type;
        }
    }
    return {};
}

std::string planes(const QImage& image) {
    const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
    std::string packed = "ARGB";
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        std::vector<std::uint8_t> plane;
        for (int y = 0; y < pixels.height(); ++y) {
            const auto* line = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
            std::transform(line, line + pixels.width(), std::back_inserter(plane),
                           [&](QRgb pixel) { return static_cast<std::uint8_t>(pixel >> shift); });
        }
        packRuns(plane, packed);
    }
    return packed + '\0'; // macOS on Apple's own processors passes over the last byte
}

} // namespace

std::string pngBytes(const QImage& image) {
    // Length, name, rendering intent "perceptual" and checksum.
    static constexpr std::string_view srgbMark("\0\0\0\1sRGB\0\xAE\xCE\x1C\xE9", 13);
    constexpr qsizetype headerEnd = 33;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    writer.setCompression(compression);
    if (!writer.write(image)) {
        return {};
    }
    return bytes.insert(headerEnd, srgbMark.data(), srgbMark.size()).toStdString();
}

std::string icnsChunk(const QImage& image) {
    const std::string_view type = typeFor(image, chunkTypes);
    if (type.empty()) {
        return {};
    }
    return chunkUnlessEmpty(type, image.width() <= largestPlanes ? planes(image) : pngBytes(image));
}

std::string icnsDoubleChunk(const QImage& image) {
    const std::string_view type = typeFor(image, doubleChunkTypes);
    return type.empty() ? std::string() : chunkUnlessEmpty(type, pngBytes(image));
}

std::string icnsFile(std::span<const std::string> chunks) {
    std::string body;
    for (const std::string& each : chunks) {
        body += each;
    }
    return chunk("icns", body);
}

} // namespace quorvel

#include "LaunchKit/Icons/ImageFile.h"

#include "LaunchKit/Icons/Bytes.h"
#include "LaunchKit/Icons/DecodingMemory.h"
#include "LaunchKit/Icons/Jpeg2000Image.h"

#include <QBuffer>
#include <QByteArray>
#include <QColorSpace>
#include <QImageReader>

#include <algorithm>
#include <array>
#include <vector>

namespace quorvel {
namespace {

constexpr std::string_view pngMark("\x89PNG\r\n\x1A\n", 8);
constexpr int maximumImages = 64;

// Returns the bytes for Qt without copying them: they must outlive the result.
QByteArray borrowed(std::string_view bytes) {
    return QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

bool isAcceptable(QSize size) {
    return size.isValid() && !size.isEmpty() && size.width() <= maximumImageSide &&
           size.height() <= maximumImageSide;
}

QSize scaledToFit(QSize size) {
    constexpr int side = 2048;
    return size.scaled(side, side, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

// Returns whether the PNG's rows are stored once and in order.
bool isPlainPng(std::string_view bytes) {
    constexpr std::size_t interlacing = 28;
    return isPng(bytes) && bytes.size() > interlacing && bytes[interlacing] == 0;
}

// Returns whether the JPEG's blocks are stored once and in order: one sequential scan of all
// components.
bool isPlainJpeg(std::string_view bytes) {
    std::size_t components = 0;
    for (std::size_t at = 2; bytes.starts_with("\xFF\xD8") && at + 10 <= bytes.size();) {
        const auto byte = [&](std::size_t index) {
            return static_cast<unsigned char>(bytes[at + index]);
        };
        const unsigned marker = byte(1);
        if (byte(0) != 0xFF) {
            return false;
        }
        if (marker == 0xC0 || marker == 0xC1) {
            components = byte(9);
        } else if (marker == 0xDA) {
            return components != 0 && byte(4) == components;
        }
        at += 2 + (std::size_t{byte(2)} << 8U | byte(3));
    }
    return false;
}

// Returns the size at which the limits allow decoding an image of this size; invalid if none.
QSize decodableSize(QSize size, std::string_view bytes) {
    if (isAcceptable(size)) {
        return size;
    }
    const bool decodable = size.isValid() && !size.isEmpty() && size.width() <= maximumScaledSide &&
                           size.height() <= maximumScaledSide &&
                           (isPlainPng(bytes) || isPlainJpeg(bytes));
    return decodable ? scaledToFit(size) : QSize();
}

struct Page {
    int index;
    QSize size; // when it is decoded
};

// Returns the images in the file that the limits allow decoding, widest first.
std::vector<Page> decodablePages(QImageReader& reader, std::string_view bytes) {
    std::vector<Page> pages;
    for (int index = 0; index < std::clamp(reader.imageCount(), 1, maximumImages); ++index) {
        const bool reached = index == 0 || reader.jumpToImage(index);
        if (const QSize size = reached ? decodableSize(reader.size(), bytes) : QSize();
            size.isValid()) {
            pages.push_back({index, size});
        }
    }
    std::stable_sort(pages.begin(), pages.end(), [](const Page& one, const Page& other) {
        return one.size.width() > other.size.width();
    });
    return pages;
}

// Returns the image as standard pixels; null if it is broken. Takes its share of the memory
// meanwhile.
QImage decodedPage(QImageReader& reader, const Page& page) {
    constexpr std::size_t bytesPerPixel = 12; // 16 bits per channel, and the standard pixels
    const DecodingMemory memory(bytesPerPixel * static_cast<std::size_t>(page.size.width()) *
                                static_cast<std::size_t>(page.size.height()));
    // From the start: a broken image leaves the reader in its middle.
    reader.device()->seek(0);
    reader.setDevice(reader.device());
    if (page.index > 0 && !reader.jumpToImage(page.index)) {
        return {};
    }
    reader.setScaledSize(page.size == reader.size() ? QSize() : page.size);
    return standardPixels(reader.read());
}

// Returns the format's name if it is a supported raster format, else empty. ICO is not supported:
// the size in its directory need not be the size of the decoded image.
QByteArray pixelFormat(QBuffer& buffer) {
    static constexpr std::array formats{"png", "jpeg", "gif", "bmp", "tiff", "webp"};
    const QByteArray format = QImageReader::imageFormat(&buffer);
    const bool known = std::any_of(formats.begin(), formats.end(),
                                   [&](const char* name) { return format == name; });
    return known ? format : QByteArray();
}

} // namespace

bool isPng(std::string_view bytes) noexcept {
    return bytes.starts_with(pngMark);
}

QSize pngSize(std::string_view bytes) {
    constexpr std::size_t widthOffset = 16;
    if (!isPng(bytes) || bytes.size() < widthOffset + 8 || bytes.substr(12, 4) != "IHDR") {
        return {};
    }
    const std::uint32_t width = bigEndian32(bytes.substr(widthOffset));
    const std::uint32_t height = bigEndian32(bytes.substr(widthOffset + 4));
    const auto side = static_cast<std::uint32_t>(maximumImageSide);
    const bool acceptable = width >= 1 && width <= side && height >= 1 && height <= side;
    return acceptable ? QSize(static_cast<int>(width), static_cast<int>(height)) : QSize();
}

QImage pngImage(std::string_view bytes, QSize size) {
    if (!size.isValid() || pngSize(bytes) != size) {
        return {};
    }
    QByteArray data = borrowed(bytes);
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    QImage image = QImageReader(&buffer, "png").read();
    return image.size() == size ? standardPixels(std::move(image)) : QImage();
}

QImage widestImage(std::string_view bytes) {
    if (isJpeg2000(bytes)) {
        return jpeg2000Image(bytes, jpeg2000Size(bytes));
    }
    QByteArray data = borrowed(bytes);
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, pixelFormat(buffer));
    reader.setAutoDetectImageFormat(false);
    if (reader.format().isEmpty()) {
        return {};
    }
    const std::vector<Page> pages = decodablePages(reader, bytes);
    for (const Page& page : pages) {
        if (QImage image = decodedPage(reader, page); !image.isNull()) {
            return image;
        }
    }
    return {};
}

QImage standardPixels(QImage image) {
    const QColorSpace own = image.colorSpace();
    const QColorSpace standard(QColorSpace::SRgb);
    if (own.isValid() && own != standard) {
        image.convertToColorSpace(standard);
    }
    image.convertTo(QImage::Format_ARGB32);
    image.setColorSpace({});
    return image;
}

} // namespace quorvel

#include "tests/support/IcnsBuilder.h"

#include <QBuffer>
#include <QByteArray>

#include <algorithm>

namespace quorvel::testing {
namespace {

std::string bigEndian(std::uint32_t number) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        bytes += static_cast<char>((number >> shift) & 0xFFU);
    }
    return bytes;
}

template<typename Take>
std::string bytesOf(const QImage& image, Take take) {
    std::string bytes;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            bytes += static_cast<char>(take(image.pixel(x, y)));
        }
    }
    return bytes;
}

// Packs runs of three and more, and all else as it is: the plainest packer that is right.
std::string packed(const std::string& bytes) {
    std::string result;
    std::size_t index = 0;
    while (index < bytes.size()) {
        std::size_t run = 1;
        while (index + run < bytes.size() && run < 130 && bytes[index + run] == bytes[index]) {
            ++run;
        }
        if (run >= 3) {
            result += static_cast<char>(run + 125);
            result += bytes[index];
            index += run;
        } else {
            result += '\0';
            result += bytes[index++];
        }
    }
    return result;
}

template<typename IsSet>
std::string bitsOf(const QImage& image, IsSet isSet) {
    std::string bits(static_cast<std::size_t>(image.width() * image.height() / 8), '\0');
    for (int index = 0; index < image.width() * image.height(); ++index) {
        if (isSet(image.pixel(index % image.width(), index / image.width()))) {
            auto& byte = bits[static_cast<std::size_t>(index / 8)];
            byte = static_cast<char>(static_cast<unsigned char>(byte) | 0x80U >> (index % 8));
        }
    }
    return bits;
}

// Alternating values for the forms of few colors.
std::string ramp(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t index = 0; index < size; ++index) {
        bytes[index] = static_cast<char>(index * 7 + index / 16);
    }
    return bytes;
}

std::string oldFamily(const QImage& picture, const char* eight, const char* four,
                      const char* bits) {
    const auto pixels =
        static_cast<std::size_t>(picture.width()) * static_cast<std::size_t>(picture.height());
    return icnsEntry(eight, ramp(pixels)) + icnsEntry(four, ramp(pixels / 2)) +
           icnsEntry(bits, bitmapOf(picture) + bitMaskOf(picture));
}

} // namespace

std::string icnsEntry(std::string_view type, std::string_view payload, std::uint32_t declaredSize) {
    const auto size = static_cast<std::uint32_t>(payload.size() + 8);
    return std::string(type) + bigEndian(declaredSize != 0 ? declaredSize : size) +
           std::string(payload);
}

std::string icnsOf(const std::vector<std::string>& entries) {
    std::string body;
    for (const std::string& entry : entries) {
        body += entry;
    }
    return icnsEntry("icns", body);
}

std::string pngOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "png");
    return bytes.toStdString();
}

std::string argbOf(const QImage& image) {
    std::string result = "ARGB";
    result += packed(alphaMaskOf(image));
    return result + rle24Of(image);
}

std::string rle24Of(const QImage& image) {
    return packed(bytesOf(image, [](QRgb pixel) { return qRed(pixel); })) +
           packed(bytesOf(image, [](QRgb pixel) { return qGreen(pixel); })) +
           packed(bytesOf(image, [](QRgb pixel) { return qBlue(pixel); }));
}

std::string raw32Of(const QImage& image) {
    std::string bytes;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            bytes += bigEndian(image.pixel(x, y) & 0xFFFFFFU);
        }
    }
    return bytes;
}

std::string alphaMaskOf(const QImage& image) {
    return bytesOf(image, [](QRgb pixel) { return qAlpha(pixel); });
}

std::string bitmapOf(const QImage& image) {
    return bitsOf(image, [](QRgb pixel) { return qGray(pixel) < 128; });
}

std::string bitMaskOf(const QImage& image) {
    return bitsOf(image, [](QRgb pixel) { return qAlpha(pixel) > 127; });
}

std::string icnsOfEveryKind() {
    const auto jp2 = [](int side, Jpeg2000Form form) {
        return jpeg2000Of(testPicture(side), form);
    };
    const QImage picture16 = testPicture(16);
    const QImage picture32 = testPicture(32);
    const std::string nested = icnsEntry("ic11", pngOf(testPicture(32, 5))) +
                               icnsEntry("ic04", argbOf(testPicture(16, 5)));
    return icnsOf({
        icnsEntry("TOC ", "ic07\0\0\0\0"),
        icnsEntry("icnV", std::string(4, '\0')),
        icnsEntry("is32", rle24Of(picture16)),
        icnsEntry("s8mk", alphaMaskOf(picture16)),
        icnsEntry("il32", raw32Of(picture32)),
        icnsEntry("l8mk", alphaMaskOf(picture32)),
        icnsEntry("ih32", rle24Of(testPicture(48))),
        icnsEntry("it32", std::string(4, '\0') + rle24Of(testPicture(128))),
        icnsEntry("t8mk", alphaMaskOf(testPicture(128))),
        oldFamily(picture16, "ics8", "ics4", "ics#"),
        oldFamily(picture32, "icl8", "icl4", "ICN#"),
        oldFamily(testPicture(48), "ich8", "ich4", "ich#"),
        icnsEntry("ICON", bitmapOf(picture32)),
        icnsEntry("icp4", rle24Of(picture16)),
        icnsEntry("icp5", jp2(32, Jpeg2000Form::grayAlpha)),
        icnsEntry("icp6", jp2(64, Jpeg2000Form::ycc)),
        icnsEntry("ic04", argbOf(picture16)),
        icnsEntry("ic05", argbOf(picture32)),
        icnsEntry("icsb", argbOf(testPicture(18))),
        icnsEntry("sb24", pngOf(testPicture(24))),
        icnsEntry("ic07", pngOf(testPicture(128).convertToFormat(QImage::Format_Indexed8))),
        icnsEntry("ic12", jp2(64, Jpeg2000Form::rgba)),
        icnsEntry("slct", nested),
        icnsEntry("\xFD\xD9\x2F\xA8", icnsOf({nested})),
        icnsEntry("name", "a name"),
        icnsEntry("info", "some notes"),
        icnsEntry("what", "nobody knows"),
    });
}

QImage testPicture(int side, unsigned seed) {
    QImage image(side, side, QImage::Format_ARGB32);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const bool flat = (x * 4 / side + y * 4 / side) % 3 == 0;
            const auto base = static_cast<int>(seed * 37 % 256);
            const int red = flat ? 200 : (x * 255 / side + base) % 256;
            const int green = flat ? base : y * 255 / side;
            const int alpha = y < side / 4 ? 255 : y > side * 3 / 4 ? 0 : 255 - y * 255 / side;
            image.setPixel(x, y, qRgba(red, green, (red ^ green) & 0xFF, alpha));
        }
    }
    return image;
}

QImage opaquePicture(int side, unsigned seed) {
    QImage image = testPicture(side, seed);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            image.setPixel(x, y, image.pixel(x, y) | 0xFF000000U);
        }
    }
    return image;
}

} // namespace quorvel::testing

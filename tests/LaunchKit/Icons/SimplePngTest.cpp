#include "LaunchKit/Icons/SimplePng.h"

#include <QBuffer>
#include <QImage>

#include <gtest/gtest.h>

namespace quorvel::testing {
namespace {

constexpr unsigned largest = 64;
constexpr std::size_t bitDepth = 24;
constexpr std::size_t colorType = 25;
constexpr std::size_t interlacing = 28;

std::string png(QSize size, QImage::Format format = QImage::Format_ARGB32) {
    QImage image(size, format);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "PNG"));
    // Qt adds the resolution.
    constexpr std::size_t length = 21;
    std::string file = bytes.toStdString();
    EXPECT_FALSE(isSimplePng(file, largest));
    return file.erase(file.find("pHYs") - 4, length);
}

// With another part before the first pixels.
std::string withPart(std::string file, std::string_view kind) {
    constexpr std::size_t afterHead = 33;
    return file.insert(afterHead, std::string(4, '\0') + std::string(kind) + std::string(4, '\0'));
}

TEST(SimplePngTest, OnlySimpleOnesOfAFewPixelsAreTaken) {
    EXPECT_TRUE(isSimplePng(png({64, 64}), largest));
    EXPECT_TRUE(isSimplePng(png({1, 64}, QImage::Format_RGB32), largest));
    EXPECT_FALSE(isSimplePng(png({65, 64}), largest));
    EXPECT_FALSE(isSimplePng(png({64, 65}), largest));
    EXPECT_FALSE(isSimplePng(png({8, 8}, QImage::Format_Grayscale8), largest));
    EXPECT_FALSE(isSimplePng(png({8, 8}, QImage::Format_Indexed8), largest));
    EXPECT_FALSE(isSimplePng(png({8, 8}, QImage::Format_RGBA64), largest));
    EXPECT_FALSE(isSimplePng("", largest));
    EXPECT_FALSE(isSimplePng("<svg/>", largest));
}

TEST(SimplePngTest, AHeadThatPromisesSomethingElseIsRefused) {
    const std::string whole = png({8, 8});
    for (const auto& [place, value] :
         {std::pair(std::size_t{16}, '\x7f'), std::pair(std::size_t{20}, '\x7f'),
          std::pair(std::size_t{19}, '\0'), std::pair(std::size_t{23}, '\0'),
          std::pair(bitDepth, '\x10'), std::pair(colorType, '\x03'), std::pair(interlacing, '\x01'),
          std::pair(std::size_t{11}, '\x0c')}) {
        std::string changed = whole;
        changed[place] = value;
        EXPECT_FALSE(isSimplePng(changed, largest)) << place;
    }
}

TEST(SimplePngTest, OneThatIsCutOrContinuedIsRefused) {
    const std::string whole = png({8, 8});
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(isSimplePng(std::string_view(whole).substr(0, size), largest)) << size;
    }
    EXPECT_FALSE(isSimplePng(whole + "x", largest));
    EXPECT_TRUE(isSimplePng(withPart(whole, "sBIT"), largest));
    for (const char* kind : {"iCCP", "zTXt", "tEXt", "eXIf", "PLTE", "acTL", "IHDR", "IEND"}) {
        EXPECT_FALSE(isSimplePng(withPart(whole, kind), largest)) << kind;
    }
}

} // namespace
} // namespace quorvel::testing

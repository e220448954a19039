#include "LaunchKit/Icons/ImageFile.h"

#include "tests/support/IcnsBuilder.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include <gtest/gtest.h>

namespace quorvel::testing {
namespace {

std::string encoded(const QImage& image, const char* format, bool progressive = false) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setProgressiveScanWrite(progressive);
    return writer.write(image) ? bytes.toStdString() : std::string();
}

std::string littleEndian(std::size_t number, int bytes) {
    std::string text;
    for (int index = 0; index < bytes; ++index) {
        text += static_cast<char>(number >> (8 * index));
    }
    return text;
}

// Red on the left, blue on the right.
QImage halves(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QPainter(&image).fillRect(size.width() / 2, 0, size.width(), size.height(), Qt::blue);
    return image;
}

// An icon file that says of its PNG image that it has these sides.
std::string icoOf(const QImage& image, std::size_t side) {
    const std::string png = pngOf(image);
    return littleEndian(0, 2) + littleEndian(1, 2) + littleEndian(1, 2) + littleEndian(side, 1) +
           littleEndian(side, 1) + littleEndian(0, 2) + littleEndian(1, 2) + littleEndian(32, 2) +
           littleEndian(png.size(), 4) + littleEndian(22, 4) + png;
}

// An uncompressed TIFF file with a page of each size, in one shade of gray each.
std::string tiffOf(const std::vector<std::pair<QSize, int>>& pages) {
    constexpr std::size_t tags = 8;
    constexpr std::size_t directorySize = 2 + 12 * tags + 4;
    std::string file = "II*" + littleEndian(0, 1) + littleEndian(8, 4);
    for (std::size_t index = 0; index < pages.size(); ++index) {
        const auto& [size, shade] = pages[index];
        const auto width = static_cast<std::size_t>(size.width());
        const auto height = static_cast<std::size_t>(size.height());
        const std::size_t pixels = file.size() + directorySize;
        const auto tag = [&](std::size_t name, std::size_t value) {
            file += littleEndian(name, 2) + littleEndian(4, 2) + littleEndian(1, 4) +
                    littleEndian(value, 4);
        };
        file += littleEndian(tags, 2);
        tag(256, width);
        tag(257, height);
        tag(258, 8);              // bits a sample
        tag(259, 1);              // not compressed
        tag(262, 1);              // 0 is black
        tag(273, pixels);         // where the only strip is
        tag(278, height);         // rows in a strip
        tag(279, width * height); // the strip's size
        const bool last = index + 1 == pages.size();
        file += littleEndian(last ? 0 : pixels + width * height, 4);
        file.append(width * height, static_cast<char>(shade));
    }
    return file;
}

TEST(ImageFileTest, ReadsPngWithAnyFileName) {
    EXPECT_EQ(widestImage(pngOf(testPicture(50))), testPicture(50));
}

TEST(ImageFileTest, ReadsTheOtherFormatsOfPixels) {
    const QImage picture = opaquePicture(40);
    EXPECT_EQ(widestImage(encoded(picture, "bmp")), picture);
    EXPECT_EQ(widestImage(encoded(picture, "jpeg")).size(), QSize(40, 40));
    EXPECT_EQ(widestImage(jpeg2000Of(picture, Jpeg2000Form::rgb)), picture);
}

TEST(ImageFileTest, TakesTheWidestOfSeveralImagesAndTheFirstOfEqualOnes) {
    if (!QImageReader::supportedImageFormats().contains("tiff")) {
        GTEST_SKIP() << "Qt has no plugin for TIFF here";
    }
    const QImage image =
        widestImage(tiffOf({{{16, 9}, 10}, {{48, 9}, 20}, {{48, 8}, 30}, {{32, 50}, 40}}));
    EXPECT_EQ(image.size(), QSize(48, 9));
    EXPECT_EQ(image.pixel(47, 8), qRgb(20, 20, 20));
}

TEST(ImageFileTest, TakesTheNextWidestIfOneIsBeyondTheLimitsOrBroken) {
    if (!QImageReader::supportedImageFormats().contains("tiff")) {
        GTEST_SKIP() << "Qt has no plugin for TIFF here";
    }
    const std::string bytes =
        tiffOf({{{16, 9}, 10}, {{maximumImageSide + 1, 1}, 20}, {{48, 9}, 30}});
    EXPECT_EQ(widestImage(bytes).size(), QSize(48, 9));
    EXPECT_EQ(widestImage(bytes.substr(0, bytes.size() - std::size_t{48} * 9)).size(),
              QSize(16, 9));
}

TEST(ImageFileTest, LeavesFilesAloneWhoseDirectoryNeedNotGiveTheRealSize) {
    EXPECT_TRUE(widestImage(icoOf(testPicture(16), 16)).isNull());
    EXPECT_TRUE(widestImage(icoOf(halves({maximumImageSide + 1, 1}), 16)).isNull());
}

TEST(ImageFileTest, LeavesDrawingsAlone) {
    EXPECT_TRUE(
        widestImage("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>").isNull());
    EXPECT_TRUE(widestImage("%PDF-1.4").isNull());
    EXPECT_TRUE(widestImage("/* XPM */ static char*x[]={\"1 1 1 1\",\"a c red\",\"a\"};").isNull());
    EXPECT_TRUE(widestImage("").isNull());
    EXPECT_TRUE(widestImage("plain text").isNull());
}

void expectHalves(const QImage& image, QSize size) {
    ASSERT_EQ(image.size(), size);
    EXPECT_GT(qRed(image.pixel(size.width() / 4, size.height() / 2)), 250);
    EXPECT_GT(qBlue(image.pixel(size.width() * 3 / 4, size.height() / 2)), 250);
}

TEST(ImageFileTest, ScalesWhatIsLargerThan4096Pixels) {
    const QImage large = halves({maximumImageSide + 904, 2500});
    expectHalves(widestImage(pngOf(large)), {2048, 1024});
    expectHalves(widestImage(encoded(large, "jpeg")), {2048, 1024});
    const QImage high = halves({1000, maximumImageSide + 904});
    expectHalves(widestImage(pngOf(high)), {409, 2048});
}

TEST(ImageFileTest, HalvesAJpeg2000WhoseComponentsWouldTakeTooMuch) {
    expectHalves(widestImage(jpeg2000Of(halves({1401, 4000}), Jpeg2000Form::rgb)), {701, 2000});
    expectHalves(widestImage(jpeg2000Of(halves({1398, 4000}), Jpeg2000Form::rgb)), {1398, 4000});
    expectHalves(widestImage(jpeg2000Of(halves({1398, 4000}), Jpeg2000Form::rgba)), {699, 2000});
}

TEST(ImageFileTest, KeepsWhatHas4096Pixels) {
    const QImage wide = halves({maximumImageSide, 2});
    EXPECT_EQ(widestImage(pngOf(wide)).size(), wide.size());
}

TEST(ImageFileTest, RefusesLargeOnesThatCantBeReadPieceByPiece) {
    const QImage wide = halves({maximumImageSide + 1, 1});
    EXPECT_TRUE(widestImage(encoded(wide, "bmp")).isNull());
    EXPECT_TRUE(widestImage(encoded(wide, "jpeg", true)).isNull()) << "progressive";
    EXPECT_TRUE(widestImage(pngOf(halves({maximumScaledSide + 1, 1}))).isNull());
    EXPECT_FALSE(widestImage(pngOf(halves({maximumScaledSide, 1}))).isNull());
}

TEST(ImageFileTest, ReturnsNullForATruncatedPng) {
    const std::string bytes = pngOf(testPicture(64));
    EXPECT_TRUE(widestImage(bytes.substr(0, bytes.size() / 2)).isNull());
    EXPECT_TRUE(widestImage(bytes.substr(0, 40)).isNull());
}

TEST(ImageFileTest, ConvertsOtherColorsToTheStandardOnes) {
    QImage picture(8, 8, QImage::Format_ARGB32);
    picture.fill(qRgb(200, 100, 50));
    picture.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    const QImage read = widestImage(pngOf(picture));
    ASSERT_EQ(read.size(), QSize(8, 8));
    EXPECT_GT(qRed(read.pixel(0, 0)), 205) << "the same red is more in the narrower space";
    EXPECT_FALSE(read.colorSpace().isValid());
}

} // namespace
} // namespace quorvel::testing

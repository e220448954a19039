#include "LaunchKit/ImageFile.h"

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

// An icon file of several PNG images.
std::string icoOf(const std::vector<QImage>& images) {
    std::string head = littleEndian(0, 2) + littleEndian(1, 2) + littleEndian(images.size(), 2);
    std::string body;
    for (const QImage& image : images) {
        const std::string png = pngOf(image);
        head += littleEndian(static_cast<std::size_t>(image.width()), 1) +
                littleEndian(static_cast<std::size_t>(image.height()), 1) + littleEndian(0, 2) +
                littleEndian(1, 2) + littleEndian(32, 2) + littleEndian(png.size(), 4) +
                littleEndian(6 + 16 * images.size() + body.size(), 4);
        body += png;
    }
    return head + body;
}

TEST(ImageFile, readsPngWhateverItIsCalled) {
    EXPECT_EQ(widestImage(pngOf(testPicture(50))), testPicture(50));
}

TEST(ImageFile, readsTheOtherFormatsOfPixels) {
    const QImage picture = opaquePicture(40);
    EXPECT_EQ(widestImage(encoded(picture, "bmp")), picture);
    EXPECT_EQ(widestImage(encoded(picture, "jpeg")).size(), QSize(40, 40));
    EXPECT_EQ(widestImage(jpeg2000Of(picture, Jpeg2000Form::rgb)), picture);
}

TEST(ImageFile, takesTheWidestOfSeveralImagesAndTheFirstOfEqualOnes) {
    const std::string bytes =
        icoOf({testPicture(16), testPicture(48, 1), testPicture(48, 2), testPicture(32)});
    EXPECT_EQ(widestImage(bytes), testPicture(48, 1));
}

TEST(ImageFile, leavesDrawingsAlone) {
    EXPECT_TRUE(
        widestImage("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>").isNull());
    EXPECT_TRUE(widestImage("%PDF-1.4").isNull());
    EXPECT_TRUE(widestImage("/* XPM */ static char*x[]={\"1 1 1 1\",\"a c red\",\"a\"};").isNull());
    EXPECT_TRUE(widestImage("").isNull());
    EXPECT_TRUE(widestImage("plain text").isNull());
}

// Red on the left, blue on the right.
QImage halves(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QPainter(&image).fillRect(size.width() / 2, 0, size.width(), size.height(), Qt::blue);
    return image;
}

void expectHalves(const QImage& image, QSize size) {
    ASSERT_EQ(image.size(), size);
    EXPECT_GT(qRed(image.pixel(size.width() / 4, size.height() / 2)), 250);
    EXPECT_GT(qBlue(image.pixel(size.width() * 3 / 4, size.height() / 2)), 250);
}

TEST(ImageFile, scalesWhatIsLargerThan4096Pixels) {
    const QImage large = halves({maximumImageSide + 904, 2500});
    expectHalves(widestImage(pngOf(large)), {2048, 1024});
    expectHalves(widestImage(encoded(large, "jpeg")), {2048, 1024});
    const QImage high = halves({1000, maximumImageSide + 904});
    expectHalves(widestImage(pngOf(high)), {409, 2048});
}

TEST(ImageFile, halvesAJpeg2000ThatWouldTakeTooMuch) {
    expectHalves(widestImage(jpeg2000Of(halves({1001, 5000}), Jpeg2000Form::rgb)), {501, 2500});
    expectHalves(widestImage(jpeg2000Of(halves({1000, 4000}), Jpeg2000Form::rgb)), {1000, 4000});
}

TEST(ImageFile, keepsWhatHas4096Pixels) {
    const QImage wide = halves({maximumImageSide, 2});
    EXPECT_EQ(widestImage(pngOf(wide)).size(), wide.size());
}

TEST(ImageFile, refusesLargeOnesThatCantBeReadPieceByPiece) {
    const QImage wide = halves({maximumImageSide + 1, 1});
    EXPECT_TRUE(widestImage(encoded(wide, "bmp")).isNull());
    EXPECT_TRUE(widestImage(encoded(wide, "jpeg", true)).isNull()) << "progressive";
    EXPECT_TRUE(widestImage(pngOf(halves({maximumScaledSide + 1, 1}))).isNull());
    EXPECT_FALSE(widestImage(pngOf(halves({maximumScaledSide, 1}))).isNull());
}

TEST(ImageFile, givesNothingForACutPng) {
    const std::string bytes = pngOf(testPicture(64));
    EXPECT_TRUE(widestImage(bytes.substr(0, bytes.size() / 2)).isNull());
    EXPECT_TRUE(widestImage(bytes.substr(0, 40)).isNull());
}

TEST(ImageFile, convertsOtherColoursToTheStandardOnes) {
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

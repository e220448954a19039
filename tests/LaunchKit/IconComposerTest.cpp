#include "LaunchKit/IconComposer.h"

#include "LaunchKit/Icons/IcnsContainer.h"
#include "LaunchKit/Icons/IcnsFile.h"
#include "LaunchKit/Icons/IconImage.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/TemporaryHome.h"

#include <QImage>

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <sys/stat.h>
#include <thread>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using IconComposer::ComposeError;
using ::testing::ElementsAre;

const IconLabel invisible{"  ", "#FFFFFF", IconLabel::Position::bottom};
const IconLabel work{"work", "#FFD60A", IconLabel::Position::bottom};

class IconComposerTest : public ::testing::Test {
protected:
    fs::path source(const std::string& bytes) const {
        write(folder_ / "source", bytes);
        return folder_ / "source";
    }
    fs::path destination() const { return folder_ / "out.icns"; }

    std::vector<QImage> composed(const fs::path& source, const IconLabel& label) const {
        IconComposer::compose(source, label, destination());
        const auto file = IcnsFile::read(destination());
        std::vector<QImage> images;
        for (std::size_t index = 0; file && index < file->entries().size(); ++index) {
            images.push_back(file->decode(index));
        }
        return images;
    }

    TemporaryFolder folder_;
};

int largestDifference(const QImage& a, const QImage& b) {
    if (a.size() != b.size() || a.isNull()) {
        return 256;
    }
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = qPremultiply(a.pixel(x, y));
            const QRgb q = qPremultiply(b.pixel(x, y));
            for (const unsigned shift : {0U, 8U, 16U, 24U}) {
                largest = std::max(largest, std::abs(static_cast<int>((p >> shift) & 255U) -
                                                     static_cast<int>((q >> shift) & 255U)));
            }
        }
    }
    return largest;
}

// The mean of the premultiplied pixels that each pixel of the result covers.
QImage areaAverage(const QImage& image, int side) {
    QImage result(side, side, QImage::Format_ARGB32_Premultiplied);
    const int step = image.width() / side;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            std::array<double, 4> sums{};
            for (int index = 0; index < step * step; ++index) {
                const QRgb pixel =
                    qPremultiply(image.pixel(x * step + index % step, y * step + index / step));
                sums[0] += qRed(pixel);
                sums[1] += qGreen(pixel);
                sums[2] += qBlue(pixel);
                sums[3] += qAlpha(pixel);
            }
            const auto mean = [&](std::size_t at) {
                return static_cast<int>(std::lround(sums.at(at) / step / step));
            };
            reinterpret_cast<QRgb*>(result.scanLine(y))[x] =
                qRgba(mean(0), mean(1), mean(2), mean(3));
        }
    }
    return result.convertToFormat(QImage::Format_ARGB32);
}

TEST_F(IconComposerTest, WritesSevenSizesFromTheLargestDown) {
    IconComposer::compose(source(pngOf(chatIcon(1024))), work, destination());
    const auto file = IcnsFile::read(destination());
    ASSERT_TRUE(file);
    const auto png = IcnsEncoding::png;
    const auto argb = IcnsEncoding::argb;
    EXPECT_THAT(file->entries(),
                ElementsAre(IcnsEntry{"ic10", png, 1024, 1024}, IcnsEntry{"ic09", png, 512, 512},
                            IcnsEntry{"ic08", png, 256, 256}, IcnsEntry{"ic07", png, 128, 128},
                            IcnsEntry{"ic12", png, 64, 64}, IcnsEntry{"ic05", argb, 32, 32},
                            IcnsEntry{"ic04", argb, 16, 16}));
    const std::string bytes = read(destination());
    EXPECT_EQ(bigEndian32(bytes.substr(4)), bytes.size());
}

TEST_F(IconComposerTest, LeavesThePictureAloneWithoutVisibleText) {
    const QImage picture = chatIcon(1024);
    for (const char* text : {"", "   ", "\t", "\n"}) {
        const auto images =
            composed(source(pngOf(picture)), {text, "#FF0000", IconLabel::Position::center});
        ASSERT_EQ(images.size(), 7U);
        EXPECT_LE(largestDifference(images[0], picture), 1);
        for (std::size_t index = 1; index < images.size(); ++index) {
            EXPECT_LE(largestDifference(images[index], areaAverage(picture, images[index].width())),
                      2)
                << images[index].width();
        }
    }
}

TEST_F(IconComposerTest, KeepsOpaqueOpaqueAndClearClearWhenScalingDown) {
    for (const auto& [color, alpha] :
         {std::pair(QColor(255, 255, 255, 255), 255), {QColor(255, 0, 0, 0), 0}}) {
        QImage flat(1000, 1000, QImage::Format_ARGB32);
        flat.fill(color);
        flat.setPixel(999, 999, qRgba(1, 2, 3, 254 - alpha)); // keeps the alpha channel in the file
        for (const QImage& image : composed(source(pngOf(flat)), invisible)) {
            EXPECT_EQ(qAlpha(image.pixel(image.width() / 2, image.width() / 2)), alpha)
                << image.width();
            EXPECT_EQ(qAlpha(image.pixel(0, 0)), alpha) << image.width();
        }
    }
}

TEST_F(IconComposerTest, BleedsNoColorOutOfTransparentPixels) {
    QImage halves(1024, 1024, QImage::Format_ARGB32);
    for (int y = 0; y < 1024; ++y) {
        for (int x = 0; x < 1024; ++x) {
            halves.setPixel(x, y, x % 2 == 0 ? qRgba(255, 0, 0, 255) : qRgba(0, 255, 0, 0));
        }
    }
    const auto images = composed(source(pngOf(halves)), invisible);
    for (std::size_t index = 1; index < images.size(); ++index) {
        const QRgb pixel = images[index].pixel(5, 5);
        EXPECT_EQ(pixel & 0xFFFFFFU, 0xFF0000U);
        EXPECT_NEAR(qAlpha(pixel), 128, 1);
    }
}

TEST_F(IconComposerTest, TakesTheLargestImageForAllSizes) {
    const auto flat = [](int side, QColor color) {
        QImage image(side, side, QImage::Format_ARGB32);
        image.fill(color);
        return pngOf(image);
    };
    const std::string bytes =
        icnsOf({icnsEntry("icp4", flat(16, Qt::red)), icnsEntry("ic09", flat(512, Qt::blue)),
                icnsEntry("ic11", flat(32, Qt::green))});
    for (const QImage& image : composed(source(bytes), invisible)) {
        EXPECT_EQ(image.pixel(7, 7), QColor(Qt::blue).rgba()) << image.width();
    }
    const std::string twice =
        icnsOf({icnsEntry("ic13", flat(256, Qt::red)), icnsEntry("ic08", flat(256, Qt::blue))});
    EXPECT_EQ(composed(source(twice), invisible).at(0).pixel(7, 7), QColor(Qt::red).rgba());
}

TEST_F(IconComposerTest, StretchesASourceThatIsNotSquare) {
    QImage wide(200, 100, QImage::Format_ARGB32);
    wide.fill(Qt::blue);
    for (const QImage& image : composed(source(pngOf(wide)), invisible)) {
        EXPECT_EQ(image.pixel(image.width() / 2, 0), QColor(Qt::blue).rgba());
        EXPECT_EQ(image.pixel(image.width() / 2, image.height() - 1), QColor(Qt::blue).rgba());
    }
}

TEST_F(IconComposerTest, DrawsUnderEveryKindOfSource) {
    const QImage picture = opaquePicture(32);
    const std::vector<std::string> sources{
        pngOf(picture),
        jpeg2000Of(picture, Jpeg2000Form::rgb),
        icnsOf({icnsEntry("ic11", jpeg2000Of(picture, Jpeg2000Form::rgb))}),
        icnsOf({icnsEntry("ic05", argbOf(picture))}),
        icnsOf({icnsEntry("il32", rle24Of(picture))}),
        icnsOf({icnsEntry("il32", raw32Of(picture))}),
        icnsOf({icnsEntry("ICON", bitmapOf(picture))}),
        icnsOfEveryKind(),
    };
    for (const std::string& bytes : sources) {
        const auto images = composed(source(bytes), work);
        ASSERT_EQ(images.size(), 7U);
        EXPECT_NE(images.at(0), composed(source(bytes), invisible).at(0));
    }
}

TEST_F(IconComposerTest, DrawsTheSameEveryTime) {
    const fs::path icon = source(pngOf(planetIcon(256)));
    IconComposer::compose(icon, work, destination());
    const std::string first = read(destination());
    IconComposer::compose(icon, work, destination());
    EXPECT_EQ(read(destination()), first) << "and replaces what is there";
}

TEST_F(IconComposerTest, MayReplaceItsOwnSource) {
    write(destination(), icnsOf({icnsEntry("ic08", pngOf(chatIcon(256)))}));
    EXPECT_EQ(composed(destination(), work).size(), 7U);
}

TEST_F(IconComposerTest, NamesASourceWithoutAnImage) {
    const auto expectNoSource = [&](const fs::path& path) {
        try {
            IconComposer::compose(path, work, destination());
            FAIL() << "composed from " << path;
        } catch (const ComposeError& error) {
            EXPECT_EQ(error.kind(), ComposeError::Case::noSourceImage);
            EXPECT_EQ(error.url(), path);
            EXPECT_EQ(error.description(), "No readable image in " + path.string());
        }
        EXPECT_FALSE(fs::exists(destination())) << "nothing is written";
    };
    expectNoSource(folder_ / "missing.icns");
    expectNoSource(folder_.path());
    expectNoSource(source(""));
    expectNoSource(source("icns"));
    expectNoSource(source(icnsOf({})));
    expectNoSource(source(icnsOf({icnsEntry("ic10", pngOf(testPicture(512)))})));
    expectNoSource(source("<svg xmlns='http://www.w3.org/2000/svg'/>"));
    expectNoSource(source(pngOf(testPicture(64)).substr(0, 200)));
    ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    expectNoSource(folder_ / "pipe");
}

TEST_F(IconComposerTest, SaysThatTheDestinationCannotBeWritten) {
    const fs::path icon = source(pngOf(chatIcon(32)));
    write(folder_ / "file", "no folder");
    for (const fs::path& bad :
         {folder_ / "missing/out.icns", folder_ / "file/out.icns", folder_.path()}) {
        try {
            IconComposer::compose(icon, work, bad);
            FAIL() << "wrote to " << bad;
        } catch (const ComposeError& error) {
            EXPECT_EQ(error.kind(), ComposeError::Case::destinationFailed);
            EXPECT_EQ(error.description(), "Could not write the composited .icns");
            EXPECT_TRUE(error.url().empty());
        }
    }
    EXPECT_EQ(read(folder_ / "file"), "no folder");
}

TEST_F(IconComposerTest, WorksOnManyThreadsAtOnce) {
    const fs::path icon = source(pngOf(planetIcon(128)));
    const std::vector<std::string> texts{"Work", "Δοκιμή", "المنزل", "工作", "🚀 Go"};
    const auto outputOf = [&](const std::string& text, const std::string& name) {
        IconComposer::compose(icon, {text, "#FFFFFF", IconLabel::Position::center}, folder_ / name);
        return read(folder_ / name);
    };
    std::vector<std::string> parallel(texts.size());
    std::vector<std::thread> threads;
    threads.reserve(texts.size());
    for (std::size_t index = 0; index < texts.size(); ++index) {
        threads.emplace_back(
            [&, index] { parallel[index] = outputOf(texts[index], std::to_string(index)); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t index = 0; index < texts.size(); ++index) {
        EXPECT_EQ(parallel[index], outputOf(texts[index], "alone")) << texts[index];
    }
}

TEST_F(IconComposerTest, HandlesALongLabel) {
    EXPECT_EQ(composed(source(pngOf(chatIcon(64))),
                       {std::string(500, 'W'), "#FFFFFF", IconLabel::Position::top})
                  .size(),
              7U);
}

} // namespace
} // namespace quorvel::testing

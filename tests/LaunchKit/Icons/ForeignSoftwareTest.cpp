#include "LaunchKit/IconComposer.h"
#include "LaunchKit/Icons/IcnsFile.h"
#include "Platform/processes/Process.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/TemporaryHome.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>

// What other software makes of the same bytes.

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;

bool isInstalled(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

int run(const std::string& program, const std::vector<std::string>& arguments) {
    Process::Options options;
    options.executable = "/usr/bin/" + program;
    options.arguments = arguments;
    options.standardOutput = Process::Discard{};
    options.standardError = Process::Discard{};
    return Process::run(options).waitUntilExit();
}

// The pictures that icns2png finds, by width.
std::map<int, QImage> extracted(const fs::path& icon, const std::string& depth) {
    const TemporaryFolder folder;
    run("icns2png", {"-x", "-d", depth, "-o", folder.path().string(), icon.string()});
    std::map<int, QImage> images;
    for (const auto& file : fs::directory_iterator(folder.path())) {
        const QImage image(QString::fromStdString(file.path().string()));
        images[image.width()] = image.convertToFormat(QImage::Format_ARGB32);
    }
    return images;
}

// Equal where anything is to be seen.
void expectSamePicture(const QImage& a, const QImage& b) {
    ASSERT_EQ(a.size(), b.size());
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const bool bothClear = qAlpha(a.pixel(x, y)) == 0 && qAlpha(b.pixel(x, y)) == 0;
            ASSERT_TRUE(bothClear || a.pixel(x, y) == b.pixel(x, y))
                << x << "," << y << ": " << std::hex << a.pixel(x, y) << " and " << b.pixel(x, y);
        }
    }
}

struct Family {
    const char* name;
    const char* depth;
    int side;
    std::vector<std::string> entries;
};

std::vector<Family> families() {
    const auto masked = [](const char* type, const char* mask, int side) {
        const std::string padding(side == 128 ? 4 : 0, '\0');
        return std::vector{icnsEntry(type, padding + rle24Of(testPicture(side))),
                           icnsEntry(mask, alphaMaskOf(testPicture(side)))};
    };
    const auto old = [](const char* type, const char* bits, int side, std::size_t size) {
        std::string levels(size, '\0');
        for (std::size_t index = 0; index < size; ++index) {
            levels[index] = static_cast<char>(index * 5 + index / 32);
        }
        const QImage picture = testPicture(side);
        return std::vector{icnsEntry(type, levels),
                           icnsEntry(bits, bitmapOf(picture) + bitMaskOf(picture))};
    };
    return {
        {"is32", "32", 16, masked("is32", "s8mk", 16)},
        {"il32", "32", 32, masked("il32", "l8mk", 32)},
        {"ih32", "32", 48, masked("ih32", "h8mk", 48)},
        {"it32", "32", 128, masked("it32", "t8mk", 128)},
        {"ics8", "8", 16, old("ics8", "ics#", 16, 256)},
        {"icl8", "8", 32, old("icl8", "ICN#", 32, 1024)},
        {"ich8", "8", 48, old("ich8", "ich#", 48, 2304)},
        {"ics4", "4", 16, old("ics4", "ics#", 16, 128)},
        {"icl4", "4", 32, old("icl4", "ICN#", 32, 512)},
        {"ics1", "1", 16, old("ics4", "ics#", 16, 128)},
        {"ICN1", "1", 32, old("icl4", "ICN#", 32, 512)},
        {"ic08", "32", 256, {icnsEntry("ic08", pngOf(testPicture(256)))}},
        {"ic09", "32", 512, {icnsEntry("ic09", pngOf(testPicture(512)))}},
    };
}

class ForeignSoftwareTestFamilies : public ::testing::TestWithParam<Family> {};
INSTANTIATE_TEST_SUITE_P(ForeignSoftware, ForeignSoftwareTestFamilies,
                         ::testing::ValuesIn(families()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(ForeignSoftwareTestFamilies, Icns2PngSeesTheSamePicture) {
    if (!isInstalled("icns2png")) {
        GTEST_SKIP() << "icns2png (package icnsutils) is not installed";
    }
    const TemporaryFolder folder;
    const std::string bytes = icnsOf(GetParam().entries);
    write(folder / "icon.icns", bytes);
    const auto images = extracted(folder / "icon.icns", GetParam().depth);
    ASSERT_TRUE(images.contains(GetParam().side));
    const auto file = IcnsFile::parse(bytes);
    ASSERT_TRUE(file);
    const std::size_t index = std::string_view(GetParam().depth) == "1" ? 1 : 0;
    expectSamePicture(file->decode(index), images.at(GetParam().side));
}

class ForeignSoftwareTest : public ::testing::Test {
protected:
    ForeignSoftwareTest() {
        chatIcon(512).save(QString::fromStdString((folder_ / "source.png").string()));
        IconComposer::compose(folder_ / "source.png",
                              {"Work", "#FFD60A", IconLabel::Position::bottom},
                              folder_ / "composed.icns");
        ours_ = IcnsFile::read(folder_ / "composed.icns");
    }

    TemporaryFolder folder_;
    std::optional<IcnsFile> ours_;
};

TEST_F(ForeignSoftwareTest, IsReadByIcns2Png) {
    if (!isInstalled("icns2png")) {
        GTEST_SKIP() << "icns2png (package icnsutils) is not installed";
    }
    const auto images = extracted(folder_ / "composed.icns", "32");
    for (const int side : {1024, 512, 256}) { // it knows no more of the types
        ASSERT_TRUE(images.contains(side)) << side;
        expectSamePicture(ours_->nearest(side), images.at(side));
    }
}

TEST_F(ForeignSoftwareTest, IsReadByQt) {
    QImageReader reader(QString::fromStdString((folder_ / "composed.icns").string()), "icns");
    if (!QImageReader::supportedImageFormats().contains("icns")) {
        GTEST_SKIP() << "Qt's icns plugin (package qt6-image-formats-plugins) is not installed";
    }
    int known = 0;
    for (int index = 0; index < reader.imageCount(); ++index) {
        const QImage image = reader.jumpToImage(index)
                                 ? reader.read().convertToFormat(QImage::Format_ARGB32)
                                 : QImage();
        if (!image.isNull() && image.width() > 32) {
            expectSamePicture(ours_->nearest(image.width()), image);
            ++known;
        }
    }
    EXPECT_GE(known, 4);
}

TEST_F(ForeignSoftwareTest, ContainsPngThatImageMagickReads) {
    if (!isInstalled("convert")) {
        GTEST_SKIP() << "convert (package imagemagick) is not installed";
    }
    const std::string bytes = read(folder_ / "composed.icns");
    const std::size_t begin = bytes.find("\x89PNG", bytes.find("ic08"));
    write(folder_ / "image.png", bytes.substr(begin));
    ASSERT_EQ(run("convert", {"png:" + (folder_ / "image.png").string(), "-depth", "8",
                              "rgba:" + (folder_ / "image.rgba").string()}),
              0);
    const std::string raw = read(folder_ / "image.rgba");
    ASSERT_EQ(raw.size(), 256U * 256U * 4U);
    const QImage image(reinterpret_cast<const uchar*>(raw.data()), 256, 256, qsizetype{256} * 4,
                       QImage::Format_RGBA8888);
    expectSamePicture(ours_->nearest(256), image.convertToFormat(QImage::Format_ARGB32));
}

} // namespace
} // namespace quorvel::testing

#include "QuorvelApp/widgets/IconLoader.h"
#include "LaunchKit/Icons/IcnsWriter.h"
#include "tests/QuorvelApp/StubServices.h"
#include "tests/support/AppBundles.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/TemporaryHome.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>

#include <sys/stat.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Each;

QImage filled(int side, const QColor& color) {
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

std::uint32_t crcOf(std::string_view bytes) {
    std::uint32_t crc = 0xFFFFFFFFU;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
        }
    }
    return ~crc;
}

void putNumber(std::string& bytes, std::size_t at, std::uint32_t number) {
    for (unsigned place = 0; place < 4; ++place) {
        bytes[at + place] = static_cast<char>(number >> (24U - 8U * place));
    }
}

// A PNG file, right in every byte, whose header promises far more than any machine can hold.
std::string pngBomb() {
    std::string png = pngOf(filled(256, Qt::red));
    putNumber(png, 16, 2'000'000'000);
    putNumber(png, 20, 2'000'000'000);
    putNumber(png, 29, crcOf(std::string_view(png).substr(12, 17)));
    return png;
}

class IconLoaderTest : public ::testing::Test {
protected:
    QPixmap loaded(const fs::path& path, int size, double ratio) {
        bool done = false;
        const auto connection =
            QObject::connect(&icons, &IconLoader::loaded, &icons,
                             [&](const fs::path& which) { done = done || which == path; });
        (void)icons.icon(path, size, ratio);
        EXPECT_TRUE(eventually([&] { return done; }));
        QObject::disconnect(connection);
        return icons.icon(path, size, ratio);
    }

    fs::path iconFile(const std::string& name = "icon.icns") {
        const std::array chunks{icnsChunk(filled(32, Qt::red)), icnsChunk(filled(64, Qt::green)),
                                icnsChunk(filled(128, Qt::blue)),
                                icnsChunk(filled(256, Qt::yellow))};
        write(folder / name, icnsFile(chunks));
        return folder / name;
    }

    TemporaryFolder folder;
    std::shared_ptr<RecordingTasks> tasks = std::make_shared<RecordingTasks>();
    IconLoader icons{tasks};
};

TEST_F(IconLoaderTest, HasThePixelsOfEveryScreenFromTheNearestImage) {
    const fs::path file = iconFile();
    struct Row {
        double ratio;
        int pixels;
        QColor nearest;
    };
    for (const Row& row : {Row{1.0, 48, Qt::green}, Row{1.5, 72, Qt::blue}, Row{2.0, 96, Qt::blue},
                           Row{3.0, 144, Qt::yellow}}) {
        const QPixmap icon = loaded(file, 48, row.ratio);
        EXPECT_EQ(icon.size(), QSize(row.pixels, row.pixels));
        EXPECT_EQ(icon.devicePixelRatio(), row.ratio);
        EXPECT_EQ(icon.deviceIndependentSize(), QSizeF(48, 48));
        EXPECT_EQ(icon.toImage().pixelColor(row.pixels / 2, row.pixels / 2), row.nearest);
    }
}

constexpr std::string_view greenDrawing =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 10 10">)"
    R"(<rect width="10" height="10" fill="#00ff00"/></svg>)";

TEST_F(IconLoaderTest, DrawsThePicturesOfIconThemes) {
    write(folder / "a.png", pngOf(filled(256, Qt::blue)));
    write(folder / "a.svg", greenDrawing);
    for (const double ratio : {1.0, 2.0}) {
        const QPixmap picture = loaded(folder / "a.png", 48, ratio);
        EXPECT_EQ(picture.size(), QSize(48, 48) * ratio);
        EXPECT_EQ(picture.toImage().pixelColor(24, 24), QColor(Qt::blue));
        const QPixmap drawing = loaded(folder / "a.svg", 48, ratio);
        EXPECT_EQ(drawing.size(), QSize(48, 48) * ratio);
        EXPECT_EQ(drawing.toImage().pixelColor(24, 24), QColor(Qt::green));
    }
}

// Ten times ten times ten ...
std::string drawingBomb() {
    std::string text = R"(<svg xmlns="http://www.w3.org/2000/svg" )"
                       R"(xmlns:xlink="http://www.w3.org/1999/xlink" viewBox="0 0 10 10"><defs>)"
                       R"(<rect id="a0" width="10" height="10"/>)";
    for (int level = 1; level < 12; ++level) {
        text += "<g id=\"a" + std::to_string(level) + "\">";
        for (int time = 0; time < 10; ++time) {
            text += "<use xlink:href=\"#a" + std::to_string(level - 1) + "\"/>";
        }
        text += "</g>";
    }
    return text + R"(</defs><use xlink:href="#a11"/></svg>)";
}

TEST_F(IconLoaderTest, ShowsThePlaceholderOfAnAppForAnIconThatIsABombOrBroken) {
    write(folder / "bomb.svg", drawingBomb());
    write(folder / "broken.svg", "<svg");
    write(folder / "bomb.png", pngBomb());
    ASSERT_EQ(::mkfifo((folder / "pipe.svg").c_str(), 0600), 0);
    const QImage placeholder = icons.icon(folder / "missing.app", 48, 1).toImage();
    for (const char* name : {"bomb.svg", "broken.svg", "bomb.png", "pipe.svg"}) {
        EXPECT_EQ(loaded(folder / name, 48, 1).toImage(), placeholder) << name;
    }
}

TEST_F(IconLoaderTest, HasAPlaceholderAtThePixelsOfEveryScreen) {
    for (const double ratio : {1.0, 1.5, 2.0}) {
        const QPixmap icon = icons.icon(folder / "missing.app", 30, ratio);
        EXPECT_EQ(icon.size(), QSize(30, 30) * ratio);
        EXPECT_EQ(icon.devicePixelRatio(), ratio);
    }
}

TEST_F(IconLoaderTest, ReadsOffTheMainThreadAtUtilityPriorityAndOnce) {
    const fs::path file = iconFile();
    tasks->holding = true;
    const QPixmap before = icons.icon(file, 48, 1);
    (void)icons.icon(file, 48, 1);
    EXPECT_EQ(tasks->priorities.size(), 1U) << "it is under way";
    tasks->release();
    ASSERT_TRUE(eventually([&] { return icons.icon(file, 48, 1).toImage() != before.toImage(); }));
    (void)icons.icon(file, 48, 1);
    EXPECT_EQ(tasks->priorities.size(), 1U) << "it is known";
    EXPECT_THAT(tasks->priorities, Each(TaskPriority::utility));
}

TEST_F(IconLoaderTest, ReadsAFileAgainOnlyAfterARefreshAndShowsTheOldOneUntilThen) {
    const fs::path file = iconFile();
    const QImage old = loaded(file, 48, 1).toImage();
    write(file, icnsFile(std::array{icnsChunk(filled(64, Qt::black))}));
    EXPECT_EQ(icons.icon(file, 48, 1).toImage(), old);
    icons.refresh();
    EXPECT_EQ(icons.icon(file, 48, 1).toImage(), old);
    EXPECT_TRUE(eventually(
        [&] { return icons.icon(file, 48, 1).toImage().pixelColor(24, 24) == QColor(Qt::black); }));
}

TEST_F(IconLoaderTest, DrawsABundlesOwnIcon) {
    const fs::path app =
        makeAppBundle(folder / "Notes.app", {{"CFBundleIconFile", std::string("Mine")}});
    iconFile("Notes.app/Contents/Resources/Mine.icns");
    EXPECT_EQ(loaded(app, 32, 1).toImage().pixelColor(16, 16), QColor(Qt::red));
}

TEST_F(IconLoaderTest, AHostileFileShowsThePlaceholder) {
    const QImage standIn = loaded(folder / "missing.icns", 48, 1).toImage();
    const std::vector<std::pair<std::string, std::string>> files{
        {"empty.icns", ""},
        {"text.icns", "no icon"},
        {"bomb.icns", icnsOf({icnsEntry("ic08", pngBomb())})},
        {"bare.icns", pngBomb()},
        {"lying.icns", icnsOf({icnsEntry("ic08", pngOf(filled(256, Qt::red)), 0xFFFFFFF0U)})},
        {"cut.icns", icnsOf({icnsEntry("ic08", pngOf(filled(256, Qt::red)))}).substr(0, 60)}};
    for (const auto& [name, bytes] : files) {
        write(folder / name, bytes);
        EXPECT_EQ(loaded(folder / name, 48, 1).toImage(), standIn) << name;
    }
}

TEST_F(IconLoaderTest, NeitherWaitsForAPipeNorReadsAGiant) {
    const QImage standIn = loaded(folder / "missing.icns", 48, 1).toImage();
    ASSERT_EQ(::mkfifo((folder / "pipe.icns").c_str(), 0600), 0);
    write(folder / "giant.icns", "icns");
    fs::resize_file(folder / "giant.icns", std::uintmax_t{1} << 40U);
    fs::create_directory(folder / "folder.icns");
    for (const char* name : {"pipe.icns", "giant.icns", "folder.icns"}) {
        EXPECT_EQ(loaded(folder / name, 48, 1).toImage(), standIn) << name;
    }
}

} // namespace
} // namespace quorvel::testing

#include "LaunchKit/Icons/IcnsWriter.h"
#include "QuorvelApp/widgets/IconImage.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QListView>

#include <array>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;

/// Every pixel of the picture is another color, so that one that was drawn at another size shows.
QImage pattern(int side) {
    QImage image(side, side, QImage::Format_ARGB32);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            image.setPixelColor(x, y, QColor((x * 67) % 256, (y * 91) % 256, (x + y) % 2 * 255));
        }
    }
    return image;
}

/// The windows at the pixel ratio of the process: 1, and in further runs 1.5 and 2.
class PixelRatioTest : public WindowTest {
protected:
    static void writePattern(const fs::path& file) {
        write(file, icnsFile(std::array{icnsChunk(pattern(256))}));
    }

    // Whether `picture` holds every pixel of the icon as it is for a square of `size`.
    static bool holds(const QImage& picture, const fs::path& path, int size, double ratio) {
        const QImage icon =
            loadIconImage(path, qCeil(size * ratio)).convertToFormat(QImage::Format_RGB32);
        const QImage where = picture.convertToFormat(QImage::Format_RGB32);
        for (int y = 0; y + icon.height() <= where.height(); ++y) {
            for (int x = 0; x + icon.width() <= where.width(); ++x) {
                if (where.pixel(x, y) == icon.pixel(0, 0) &&
                    where.copy(x, y, icon.width(), icon.height()) == icon) {
                    return true;
                }
            }
        }
        return false;
    }

    double ratio() const { return window->devicePixelRatioF(); }
};

TEST_F(PixelRatioTest, TheWindowHasTheConfiguredRatio) {
    open();
    EXPECT_EQ(window->grab().devicePixelRatio(), ratio());
    if (qEnvironmentVariableIsSet("QT_SCALE_FACTOR")) {
        EXPECT_EQ(ratio(), qEnvironmentVariable("QT_SCALE_FACTOR").toDouble());
    }
}

TEST_F(PixelRatioTest, RowsAndTheDetailDrawIconsPixelForPixel) {
    const InstanceRecord& work = addClone("Work");
    writePattern(iconPathOf(work));
    open();
    select(work);
    for (const int size : {30, 64}) {
        EXPECT_TRUE(eventually([&] {
            return holds(window->grab().toImage(), iconPathOf(work), size, ratio());
        })) << size;
    }
}

TEST_F(PixelRatioTest, TilesAndTheConfigurationDrawIconsPixelForPixel) {
    const fs::path app =
        makeAppBundle(home / "Apps/Notes.app", {{"CFBundleIconFile", std::string("Mine")}});
    writePattern(app / "Contents/Resources/Mine.icns");
    stubs.installed = {{.url = app, .name = "Notes", .bundleId = "notes"}};
    open();
    openSheet();
    EXPECT_TRUE(eventually(
        [&] { return holds(window->grab().toImage(), app, AppTile::iconSize, ratio()); }));
    choose(u"Notes"_s);
    EXPECT_TRUE(eventually([&] { return holds(window->grab().toImage(), app, 40, ratio()); }));
}

TEST_F(PixelRatioTest, SymbolsAreDrawnAtTheirPixels) {
    open();
    const QPixmap symbol =
        symbolIcon(u"trash"_s).pixmap(QSize(16, 16), window->devicePixelRatioF());
    EXPECT_EQ(symbol.size(), QSize(16, 16) * ratio());
    EXPECT_EQ(symbol.devicePixelRatio(), ratio());
}

} // namespace
} // namespace quorvel::testing

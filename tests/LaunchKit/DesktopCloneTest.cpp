#include "LaunchKit/Icons/IcnsFile.h"
#include "LaunchKit/Icons/IcnsWriter.h"
#include "LaunchKit/Icons/IconImage.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/Targets/AppIcon.h"
#include "LaunchKit/WrapperFactory.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/AppBundles.h"
#include "tests/support/DesktopApps.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

std::string square(int side, Qt::GlobalColor color) {
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(color);
    return pngBytes(image);
}

class DesktopCloneTest : public ::testing::Test {
protected:
    DesktopCloneTest() {
        apps.addProgram("app", helperProgram());
        write(apps.at("runner"), "runner");
    }

    [[nodiscard]] WrapperFactory::Request request(const fs::path& target) const {
        WrapperFactory::Request request;
        request.displayName = "Work";
        request.targetApp = target;
        request.outputDir = apps.at("out");
        return request;
    }

    [[nodiscard]] fs::path create(const WrapperFactory::Request& wanted) const {
        return WrapperFactory(apps.at("runner")).create(wanted);
    }

    [[nodiscard]] QImage iconOfClone(const WrapperFactory::Request& wanted) const {
        return widestIconImage(iconOf(create(wanted)));
    }

    [[nodiscard]] std::string errorOf(const fs::path& target) const {
        try {
            (void)create(request(target));
        } catch (const Error& error) {
            return error.description();
        }
        return "no error";
    }

    TemporaryHome home;
    DesktopApps apps;
};

TEST_F(DesktopCloneTest, RemembersTheEntryAndItsEnginesArguments) {
    write(apps.at("lib/fox/fox"), read(helperProgram()));
    makeExecutable(apps.at("lib/fox/fox"));
    write(apps.at("lib/fox/application.ini"), "[App]\nRemotingName=fox\n");
    write(apps.at("lib/fox/libxul.so"), "x");
    fs::create_symlink(apps.at("lib/fox/fox"), apps.at("bin/fox"));
    const fs::path entry = apps.addEntry("fox", "fox %u");
    const fs::path wrapper = create(request(entry));
    const InstanceConfig config = InstanceRegistry().record(wrapper).value().config;
    EXPECT_EQ(config.targetAppPath, entry);
    EXPECT_THAT(config.extraArgs,
                ElementsAre("-profile", "{{instanceHome}}/FirefoxProfile", "-no-remote"));
    EXPECT_THAT(config.environment, IsEmpty());
}

TEST_F(DesktopCloneTest, TheIconIsTheEntrysPicture) {
    apps.addIcon("256x256", "picture.png", square(256, Qt::red));
    const QImage icon = iconOfClone(request(apps.addEntry("a", "app", "Icon=picture\n")));
    EXPECT_EQ(icon.size(), QSize(256, 256));
    EXPECT_EQ(icon.pixelColor(128, 128), QColor(Qt::red));
    EXPECT_TRUE(InstanceRegistry().record(apps.at("out/Work.app")).value().iconURL());
}

TEST_F(DesktopCloneTest, ASmallPictureIsEnlargedOnce) {
    apps.addIcon("48x48", "picture.png", square(48, Qt::red));
    EXPECT_EQ(iconOfClone(request(apps.addEntry("a", "app", "Icon=picture\n"))).width(), 64);
}

TEST_F(DesktopCloneTest, APictureThatIsNotSquareKeepsItsShape) {
    QImage wide(64, 32, QImage::Format_ARGB32);
    wide.fill(Qt::blue);
    apps.addIcon("48x48", "wide.png", pngBytes(wide));
    const QImage icon = iconOfClone(request(apps.addEntry("a", "app", "Icon=wide\n")));
    ASSERT_EQ(icon.size(), QSize(64, 64));
    EXPECT_EQ(icon.pixelColor(32, 4).alpha(), 0);
    EXPECT_EQ(icon.pixelColor(32, 32), QColor(Qt::blue));
}

TEST_F(DesktopCloneTest, ADrawingIsDrawnLarge) {
    apps.addIcon("scalable", "drawing.svg",
                 "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
                 "<rect width='10' height='10' fill='#00ff00'/></svg>");
    const QImage icon = iconOfClone(request(apps.addEntry("a", "app", "Icon=drawing\n")));
    EXPECT_EQ(icon.width(), 1024);
    EXPECT_EQ(icon.pixelColor(512, 512), QColor(0, 255, 0));
}

TEST_F(DesktopCloneTest, TheLabelIsDrawnIn) {
    apps.addIcon("256x256", "picture.png", square(256, Qt::red));
    WrapperFactory::Request wanted = request(apps.addEntry("a", "app", "Icon=picture\n"));
    const QImage plain = iconOfClone(wanted);
    wanted.iconLabel = IconLabel{.text = "WORK", .colorHex = "#0000FF"};
    const QImage badged = iconOfClone(wanted);
    ASSERT_EQ(badged.size(), plain.size());
    EXPECT_NE(badged, plain);
    EXPECT_EQ(badged.pixelColor(128, 20), QColor(Qt::red));
}

TEST_F(DesktopCloneTest, AnIconThatCannotBeDrawnIsLeftOut) {
    apps.addIcon("48x48", "bad.png", "not a picture");
    apps.addIcon("scalable", "bomb.svg",
                 "<svg xmlns='http://www.w3.org/2000/svg' "
                 "xmlns:xlink='http://www.w3.org/1999/xlink' width='1' height='1'>"
                 "<g id='a'><use xlink:href='#a'/></g></svg>");
    // As large as a picture's header can claim to be.
    std::string huge = square(4, Qt::red);
    huge.replace(16, 8, std::string("\x7f\xff\xff\xff\x7f\xff\xff\xff", 8));
    apps.addIcon("48x48", "huge.png", huge);
    for (const char* name : {"bad", "bomb", "huge", "missing"}) {
        const fs::path wrapper =
            create(request(apps.addEntry("a", "app", "Icon=" + std::string(name) + "\n")));
        EXPECT_FALSE(itemExists(iconOf(wrapper))) << name;
        EXPECT_TRUE(InstanceRegistry().record(wrapper)) << name;
    }
}

TEST_F(DesktopCloneTest, ACustomIconReplacesTheEntrys) {
    apps.addIcon("256x256", "picture.png", square(256, Qt::red));
    write(apps.at("own.icns"), "own");
    WrapperFactory::Request wanted = request(apps.addEntry("a", "app", "Icon=picture\n"));
    wanted.customIcon = apps.at("own.icns");
    EXPECT_EQ(read(iconOf(create(wanted))), "own");
}

TEST_F(DesktopCloneTest, SaysWhyAnEntryIsNotCloned) {
    EXPECT_EQ(errorOf(apps.addEntry("a", "nothing")),
              "“a.desktop” couldn’t be used: its program “nothing” is not installed");
    EXPECT_EQ(errorOf(apps.addEntry("t", "app", "Terminal=true\n")),
              "“t.desktop” couldn’t be cloned: it runs in a terminal");
    EXPECT_FALSE(itemExists(apps.at("out")));
}

TEST_F(DesktopCloneTest, AnAppImageWithAFolderThatReplacesTheClonesIsRefusedByName) {
    const fs::path image = apps.addProgram("Thing.AppImage", helperProgram());
    std::string bytes = read(image);
    bytes.replace(8, 3, "AI\x02");
    write(image, bytes);
    EXPECT_EQ(InstanceRegistry().record(create(request(image))).value().config.targetAppPath,
              image);
    fs::create_directory(image.string() + ".config");
    EXPECT_EQ(errorOf(image), "“Thing.AppImage” couldn’t be cloned: it would use “" +
                                  image.string() +
                                  ".config” instead of the clone’s own folder; rename or remove "
                                  "that first");
}

} // namespace
} // namespace quorvel

// What `repairMenu` puts right.
#include "LaunchKit/Menu/MenuEntries.h"

#include "Base/Error.h"
#include "LaunchKit/Changes/CloneDeletion.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Launching/WindowWord.h"
#include "LaunchKit/WrapperFactory.h"
#include "LaunchKit/WrapperGenerator.h"
#include "Platform/entries/MenuEntry.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/Process.h"
#include "tests/LaunchKit/Menu/MenuEntriesFixture.h"
#include "tests/support/AppBundles.h"
#include "tests/support/EveryStep.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class MenuRepairTest : public MenuEntriesFixture {};

// A picture with a dark half, a light half, and a gap between.
QImage halves() {
    QImage image(48, 48, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 48; ++x) {
            if (x < 20 || x >= 28) {
                image.setPixelColor(x, y, x < 20 ? QColor(10, 0, 0) : QColor(255, 255, 200));
            }
        }
    }
    return image;
}

TEST_F(MenuRepairTest, AMonochromeTrayIconIsPublishedAndRepaired) {
    InstanceConfig config = command("Work");
    config.menuBarIconTemplate = true; // alone, it says nothing
    addIcon(made(config), pngOf(halves()));
    publishInMenu(made(config));
    EXPECT_FALSE(fs::exists(pictures("symbolic")));
    config.menuBarIcon = true;
    const InstanceRecord record = made(config);
    EXPECT_EQ(repairMenu({record}).published, 1U);
    const fs::path drawing =
        pictures("symbolic") / (readDesktopEntry(published(record)).icon + "-symbolic.svg");
    QImage drawn(48, 48, QImage::Format_ARGB32);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    QSvgRenderer(QString::fromStdString(drawing.string())).render(&painter);
    painter.end();
    EXPECT_EQ(drawn.pixelColor(10, 24).alpha(), 255) << "dark";
    EXPECT_EQ(drawn.pixelColor(24, 24).alpha(), 0) << "the gap";
    EXPECT_NEAR(drawn.pixelColor(38, 24).alpha(), 64, 2) << "light";
    EXPECT_NEAR(drawn.pixelColor(10, 24).blue(), drawn.pixelColor(38, 24).blue(), 2) << "one color";
    EXPECT_EQ(repairMenu({record}).published, 0U);
    fs::remove(drawing);
    EXPECT_EQ(repairMenu({record}).published, 1U);
    EXPECT_TRUE(fs::exists(drawing));
    withdrawFromMenu(record.bundleURL);
    EXPECT_FALSE(fs::exists(drawing));
}

TEST_F(MenuRepairTest, RepairsWhatAKilledPublicationLeaves) {
    InstanceConfig config = reader();
    config.openWithPassthrough = true;
    const InstanceRecord record = made(config);
    addIcon(record, pngOf(chatIcon(48)));
    publishInMenu(record);
    const auto complete = menu();
    MenuEntry entry = menuEntryOf(record);
    int steps = 0;
    for (Kill kill = Kill::done; kill == Kill::done; ++steps) {
        withdrawFromMenu(record.bundleURL);
        kill = killedBefore(steps, [&] { publishMenuEntry(entry, {{48, "x"}, {256, "y"}}); });
        if (kill == Kill::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
        EXPECT_THAT(repairMenu({record}).problems, IsEmpty());
        ASSERT_TRUE(fs::exists(published(record))) << steps;
        ASSERT_TRUE(hasMenuPicture(readDesktopEntry(published(record)).icon, 128)) << steps;
        EXPECT_EQ(repairMenu({record}).published, 0U) << "nothing is left to repair";
    }
    EXPECT_GT(steps, 20);
}

TEST_F(MenuRepairTest, TheApplicationsDrawingIsRepairedAsLongAsTheIconIsMadeOfIt) {
    const std::string red = R"(<svg xmlns="http://www.w3.org/2000/svg" width="48" height="48">)"
                            R"(<rect width="48" height="48" fill="red"/></svg>)";
    write(home_ / "reader.svg", red);
    write(target(), targetEntry + "Icon=" + (home_ / "reader.svg").string() + "\n");
    WrapperFactory::Request request;
    request.targetApp = target();
    request.displayName = "Work";
    request.outputDir = clones();
    const fs::path wrapper = WrapperFactory(runnerProgram()).create(request);
    const InstanceRecord record = InstanceRegistry().record(wrapper).value();
    const auto drawing = [&] {
        return pictures("scalable") / (readDesktopEntry(published(record)).icon + ".svg");
    };
    ASSERT_EQ(read(drawing()), red);
    fs::remove_all(home_ / ".local/share/icons");
    EXPECT_EQ(repairMenu({record}).published, 1U);
    EXPECT_EQ(read(drawing()), red);
    fs::remove(drawing()); // alone
    EXPECT_EQ(repairMenu({record}).published, 1U);
    EXPECT_EQ(read(drawing()), red);
    EXPECT_EQ(repairMenu({record}).published, 0U);
    addIcon(record, pngOf(chatIcon(64)));
    EXPECT_EQ(repairMenu({record}).published, 1U) << "another icon";
    EXPECT_FALSE(fs::exists(drawing()));
    EXPECT_TRUE(fs::exists(pictures("48x48") / drawing().filename().replace_extension("png")));
    EXPECT_EQ(repairMenu({record}).published, 0U);
}

TEST_F(MenuRepairTest, RepairsWhatAKilledWithdrawalLeaves) {
    const InstanceRecord record = made(command("Work"));
    addIcon(record, pngOf(chatIcon(48)));
    int steps = 0;
    for (Kill kill = Kill::done; kill == Kill::done; ++steps) {
        publishInMenu(record);
        const std::string identity = cloneIdentity(record.bundleURL);
        fs::remove_all(record.bundleURL);
        kill = killedBefore(steps, [&] { withdrawFromMenu(identity); });
        if (kill == Kill::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
        repairMenu({});
        for (const auto& [name, content] : menu()) {
            ASSERT_TRUE(content == "<folder>") << name << " at step " << steps;
        }
        (void)made(record.config);
        addIcon(record, pngOf(chatIcon(48)));
    }
    EXPECT_GT(steps, 5);
}

TEST_F(MenuRepairTest, AnEntryOfAReplacedCloneIsRepaired) {
    const InstanceRecord record = made(command("Work"));
    publishInMenu(record);
    EXPECT_EQ(repairMenu({record}).published, 0U);
    fs::last_write_time(published(record),
                        fs::file_time_type::clock::now() - std::chrono::hours(1));
    EXPECT_EQ(repairMenu({record}).published, 1U) << "the wrapper is newer";
    addIcon(record, pngOf(chatIcon(48)));
    write(record.bundleURL / "Contents/Info.plist", "<plist/>");
    fs::last_write_time(record.bundleURL / "Contents/Info.plist",
                        fs::file_time_type::clock::now() + std::chrono::seconds(1));
    EXPECT_EQ(repairMenu({record}).published, 1U);
    EXPECT_THAT(readDesktopEntry(published(record)).icon, ::testing::StartsWith("Quorvel-"));
}

TEST_F(MenuRepairTest, WhatTheUserChangedInTheMenuStays) {
    const InstanceRecord record = made(command("Work"));
    publishInMenu(record);
    DesktopEntry edited = readDesktopEntry(published(record));
    edited.name = "My own name";
    edited.icon = "face-smile";
    edited.noDisplay = true;
    const std::string text = desktopEntryText(edited);
    write(published(record), text);
    EXPECT_EQ(repairMenu({record}).published, 0U);
    EXPECT_EQ(read(published(record)), text);
    edited.exec = "/bin/false";
    write(published(record), desktopEntryText(edited));
    EXPECT_EQ(repairMenu({record}).published, 1U) << "it no longer starts the clone";
}

TEST_F(MenuRepairTest, APictureThatAPowerCutEmptiedIsDrawnAgain) {
    const InstanceRecord record = made(command("Work"));
    addIcon(record, pngOf(chatIcon(48)));
    publishInMenu(record);
    const auto complete = menu();
    const fs::path picture =
        pictures("48x48") / (readDesktopEntry(published(record)).icon + ".png");
    fs::resize_file(picture, 0);
    EXPECT_EQ(repairMenu({record}).published, 1U);
    EXPECT_TRUE(menu() == complete);
    EXPECT_EQ(repairMenu({record}).published, 0U);
}

TEST_F(MenuRepairTest, AnEntryThatAPowerCutEmptiedIsPublishedAgain) {
    const InstanceRecord record = made(command("Work"));
    addIcon(record, pngOf(chatIcon(48)));
    publishInMenu(record);
    const auto complete = menu();
    fs::resize_file(published(record), 0);
    const MenuRepair repair = repairMenu({record});
    EXPECT_THAT(repair.problems, IsEmpty());
    EXPECT_EQ(repair.published, 1U);
    EXPECT_TRUE(menu() == complete);
}

TEST_F(MenuRepairTest, PicturesOfOthersStayThoughAnEntryHasTheirWindowClass) {
    const InstanceRecord record = made(command("Work"));
    publishInMenu(record);
    DesktopEntry edited = readDesktopEntry(published(record));
    edited.startupWmClass = "drawing";
    edited.icon = "drawing-red";
    write(published(record), desktopEntryText(edited));
    const fs::path others = pictures("48x48") / "drawing-blue.png";
    write(others, "somebody else's");
    fs::last_write_time(others, fs::file_time_type::clock::now() - std::chrono::hours(1));
    EXPECT_THAT(repairMenu({record}).problems, IsEmpty());
    EXPECT_TRUE(fs::exists(others));
}

TEST_F(MenuRepairTest, OnlyEntriesOfClonesThatAreGoneAreWithdrawn) {
    const InstanceRecord listed = made(command("Listed"));
    const InstanceRecord elsewhere = made(command("Elsewhere"));
    const InstanceRecord gone = made(command("Gone"));
    const InstanceRecord onADisk{home_ / "disk/Work.app", command("Work")};
    makeWrapper(onADisk.bundleURL, onADisk.config);
    for (const InstanceRecord& record : {listed, elsewhere, gone, onADisk}) {
        publishInMenu(record);
    }
    fs::remove_all(gone.bundleURL);
    fs::remove_all(home_ / "disk");
    const MenuRepair repair = repairMenu({listed});
    EXPECT_EQ(repair.withdrawn, 1U);
    EXPECT_EQ(repair.published, 0U);
    EXPECT_FALSE(fs::exists(published(gone)));
    for (const InstanceRecord& record : {listed, elsewhere, onADisk}) {
        EXPECT_TRUE(fs::exists(published(record))) << record.bundleURL;
    }
}

TEST_F(MenuRepairTest, ACloneThatCannotBePublishedDoesNotStopTheOthers) {
    const InstanceRecord impossible = made(command("two\nlines"));
    const InstanceRecord record = made(command("Work"));
    const MenuRepair repair = repairMenu({impossible, record});
    EXPECT_THAT(repair.problems, SizeIs(1));
    EXPECT_TRUE(fs::exists(published(record)));
}

} // namespace
} // namespace quorvel::testing

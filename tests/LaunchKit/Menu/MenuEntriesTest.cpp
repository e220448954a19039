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
#include "tests/support/IcnsBuilder.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/TemporaryHome.h"

#include <gio/gdesktopappinfo.h>
#include <gmock/gmock.h>

#include <QImage>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class MenuEntriesTest : public MenuEntriesFixture {};

TEST_F(MenuEntriesTest, AnEntryStartsTheWrappersRunnerAndIsHiddenWithoutIt) {
    const InstanceRecord record = made(command("Work"));
    publishInMenu(record);
    const DesktopEntry entry = readDesktopEntry(published(record));
    const std::string runner = (record.bundleURL / "Contents/MacOS/runner").string();
    EXPECT_EQ(entry.type, "Application");
    EXPECT_EQ(entry.name, "Work");
    EXPECT_EQ(entry.comment, "Runs /bin/true");
    EXPECT_EQ(entry.exec, runner);
    EXPECT_EQ(entry.tryExec, runner);
    EXPECT_EQ(entry.cloneId, record.bundleURL.string());
    EXPECT_EQ(entry.startupWmClass + ".desktop", published(record).filename().string());
    EXPECT_FALSE(entry.terminal);
    EXPECT_THAT(entry.mimeTypes, IsEmpty());
    EXPECT_EQ(objections(published(record)), "");

    GDesktopAppInfo* info = g_desktop_app_info_new_from_filename(published(record).c_str());
    ASSERT_NE(info, nullptr);
    EXPECT_STREQ(g_app_info_get_executable(G_APP_INFO(info)), runner.c_str());
    EXPECT_TRUE(g_app_info_should_show(G_APP_INFO(info)));
    g_object_unref(info);
    fs::remove(runner);
    EXPECT_EQ(g_desktop_app_info_new_from_filename(published(record).c_str()), nullptr);
}

TEST_F(MenuEntriesTest, DeletingALinkToACloneLeavesItsEntry) {
    InstanceConfig config = command("Real");
    const InstanceRecord record = made(config);
    publishInMenu(record);
    const fs::path link = clones() / "Link.app";
    fs::create_symlink(record.bundleURL, link);
    const InstanceRegistry registry;
    EXPECT_FALSE(deleteClone(registry, {link, config}, false).isFailure());
    EXPECT_FALSE(itemOrLinkExists(link));
    EXPECT_TRUE(fs::exists(published(record)));
}

TEST_F(MenuEntriesTest, NoTwoClonesShareAWord) {
    // Both have the same identifier.
    const InstanceRecord one = made(command("A B"));
    const InstanceRecord other = made(command("A-B"));
    publishInMenu(one);
    publishInMenu(other);
    EXPECT_NE(entryOf(one).startupWmClass, entryOf(other).startupWmClass);
    EXPECT_THAT(publishedMenuEntries(), SizeIs(2));
    EXPECT_THAT(entryOf(one).startupWmClass, ::testing::MatchesRegex("[A-Z][-A-Za-z0-9]*"));
    EXPECT_EQ(windowWord(cloneIdentity(one.bundleURL)),
              windowWord(cloneIdentity(clones() / "../Applications/A B.app/")));
}

TEST_F(MenuEntriesTest, NamesAreShownAsTheyAreButCannotDisguiseThemselves) {
    const std::vector<std::pair<std::string, std::string>> names{
        {R"(say "hi" 100% %u)", R"(say "hi" 100% %u)"},
        {R"(back\slash\n $(id) `id`)", R"(back\slash\n $(id) `id`)"},
        {"<b>bold</b> & [co] = #1;2", "<b>bold</b> & [co] = #1;2"},
        {"עברית and العربية", "עברית and العربية"},
        {"\u202Egpj.exe", "gpj.exe"},
        {"two\nlines\ttab", "twolinestab"},
        {"\u200Fa\u2066b\u2069\u061Cc\u0085", "abc"},
        {"zero\u200Bwidth", "zero\u200Bwidth"},
    };
    for (const auto& [name, shown] : names) {
        InstanceConfig config = command("Work");
        config.displayName = name;
        InstanceRecord record = made(command("Work"));
        record.config = config;
        publishInMenu(record);
        EXPECT_EQ(readDesktopEntry(published(record)).name, shown);
        EXPECT_EQ(objections(published(record)), "") << name;
        GDesktopAppInfo* info = g_desktop_app_info_new_from_filename(published(record).c_str());
        ASSERT_NE(info, nullptr) << name;
        EXPECT_EQ(g_app_info_get_name(G_APP_INFO(info)), shown);
        g_object_unref(info);
    }
}

TEST_F(MenuEntriesTest, ANameOfNothingVisibleIsReplaced) {
    InstanceRecord record = made(command("Work"));
    record.config.displayName = "\u202E\u200F";
    EXPECT_EQ(entryOf(record).name, entryOf(record).startupWmClass);
}

TEST_F(MenuEntriesTest, PathsThatNeedQuotesStartTheRunner) {
    for (const char* name : {"Wo rk", "a'b\"c", "$HOME `id` \\ %u", "50%", "ünï", "-rf ; &"}) {
        const InstanceRecord record = made(command(name));
        const std::string runner = (record.bundleURL / "Contents/MacOS/runner").string();
        write(runner, "#!/bin/sh\necho started >\"$(dirname \"$0\")/mark\"\n");
        publishInMenu(record);
        EXPECT_EQ(objections(published(record)), "") << name;
        GDesktopAppInfo* info = g_desktop_app_info_new_from_filename(published(record).c_str());
        ASSERT_NE(info, nullptr) << name;
        EXPECT_TRUE(g_app_info_launch(G_APP_INFO(info), nullptr, nullptr, nullptr)) << name;
        g_object_unref(info);
        const fs::path mark = record.bundleURL / "Contents/MacOS/mark";
        for (int tries = 0; !fs::exists(mark) && tries < 1000; ++tries) {
            g_usleep(10000);
        }
        EXPECT_TRUE(fs::exists(mark)) << name;
    }
}

TEST_F(MenuEntriesTest, APathWithALineBreakIsRefusedWithTheReason) {
    const InstanceRecord record = made(command("two\nlines"));
    try {
        publishInMenu(record);
        FAIL() << "it was published";
    } catch (const Error& error) {
        EXPECT_THAT(error.what(), HasSubstr("line break"));
    }
    EXPECT_FALSE(fs::exists(entries()));
}

TEST_F(MenuEntriesTest, TheIconIsPublishedInEverySize) {
    const InstanceRecord record = made(command("Work"));
    const QImage picture = chatIcon(512);
    addIcon(record, pngOf(picture));
    publishInMenu(record);
    const std::string icon = readDesktopEntry(published(record)).icon;
    for (const int side : {48, 128, 256}) {
        const std::string size = std::to_string(side) + "x" + std::to_string(side);
        const QImage shown = pictureIn(pictures(size) / (icon + ".png"));
        ASSERT_EQ(shown.size(), QSize(side, side));
        EXPECT_EQ(shown.pixelColor(side / 2, side / 4),
                  picture.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                      .pixelColor(side / 2, side / 4));
    }
    EXPECT_FALSE(fs::exists(pictures("scalable")));
}

TEST_F(MenuEntriesTest, ADrawingIsPublishedBesideThePictures) {
    const InstanceRecord record = made(command("Work"));
    addIcon(record, pngOf(chatIcon(64)));
    write(home_ / "drawing.svg", "<svg/>");
    publishInMenu(record, home_ / "drawing.svg");
    const std::string icon = readDesktopEntry(published(record)).icon;
    EXPECT_EQ(read(pictures("scalable") / (icon + ".svg")), "<svg/>");
    EXPECT_TRUE(fs::exists(pictures("256x256") / (icon + ".png")));
    publishInMenu(record, home_ / "missing.svg");
    const std::string plain = readDesktopEntry(published(record)).icon;
    EXPECT_TRUE(fs::exists(pictures("256x256") / (plain + ".png")));
    EXPECT_TRUE(fs::is_empty(pictures("scalable")));
}

TEST_F(MenuEntriesTest, AnInvalidPictureLeavesAGenericOne) {
    const InstanceRecord record = made(command("Work"));
    addIcon(record, "not a picture");
    publishInMenu(record);
    EXPECT_EQ(readDesktopEntry(published(record)).icon, "utilities-terminal");
    EXPECT_FALSE(fs::exists(pictures("48x48")));
}

TEST_F(MenuEntriesTest, CreatingAndDeletingThroughTheFactoryPublishesAndWithdraws) {
    WrapperFactory::Request request;
    request.kind = ShortcutKind::command;
    request.commandPath = "/bin/true";
    request.displayName = "Work";
    write(home_ / "icon.png", pngOf(chatIcon(64)));
    request.customIcon = home_ / "icon.png";
    const WrapperFactory factory(runnerProgram());
    std::vector<std::string> warnings;
    const auto warn = [&](const std::string& text) { warnings.push_back(text); };
    (void)factory.create(request, {}, warn);
    const auto first = menu();
    // Another picture, and so another name.
    write(home_ / "icon.png", pngOf(planetIcon(64)));
    const fs::path wrapper = factory.create(request, {}, warn);
    EXPECT_THAT(warnings, IsEmpty());
    const InstanceRecord record = InstanceRegistry().record(wrapper).value();
    ASSERT_TRUE(fs::exists(published(record)));
    const std::string icon = readDesktopEntry(published(record)).icon;
    EXPECT_EQ(first.count("icons/hicolor/48x48/apps/" + icon + ".png"), 0U);
    EXPECT_THAT(directoryEntries(pictures("48x48")).value(), ElementsAre(icon + ".png"));
    write(entries() / "theirs.desktop", "[Desktop Entry]\nType=Application\nName=Work\nExec=a\n");
    const auto removed = deleteClone(InstanceRegistry(), record, false);
    EXPECT_FALSE(removed.isFailure());
    EXPECT_THAT(directoryEntries(entries()).value(), ElementsAre("theirs.desktop"));
    EXPECT_THAT(directoryEntries(pictures("48x48")).value(), IsEmpty());
    EXPECT_THAT(directoryEntries(pictures("256x256")).value(), IsEmpty());
}

TEST_F(MenuEntriesTest, ACloneThatCannotBePublishedIsMadeAndTheCallerIsTold) {
    write(entries(), "a file where the folder should be");
    WrapperFactory::Request request;
    request.kind = ShortcutKind::web;
    request.displayName = "Work";
    std::vector<std::string> warnings;
    const fs::path wrapper =
        WrapperFactory(runnerProgram()).create(request, {}, [&](const std::string& text) {
            warnings.push_back(text);
        });
    EXPECT_TRUE(InstanceRegistry().record(wrapper));
    EXPECT_THAT(warnings, ElementsAre(HasSubstr("“Work” was made, but")));
    EXPECT_NO_THROW((void)WrapperFactory(runnerProgram()).create(request));
}

} // namespace
} // namespace quorvel::testing

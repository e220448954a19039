#include "LaunchKit/Menu/MenuTarget.h"

#include "tests/LaunchKit/Menu/MenuEntriesFixture.h"

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class MenuTargetTest : public MenuEntriesFixture {};

TEST_F(MenuTargetTest, ACloneOfAnEntryIsFiledWhereItsTargetIs) {
    const DesktopEntry entry = entryOf(made(reader()));
    EXPECT_EQ(entry.comment, "Clone of Reader");
    EXPECT_THAT(entry.categories, ElementsAre("Office", "Viewer"));
    EXPECT_THAT(entry.keywords, ElementsAre("book", "Reader"));
    EXPECT_EQ(entry.startupNotify, false);
    EXPECT_NE(entry.startupWmClass, "reader");
    EXPECT_FALSE(entry.dbusActivatable);
    EXPECT_THAT(entry.mimeTypes, IsEmpty()) << "it was not asked to open anything";
    EXPECT_THAT(entry.exec, ::testing::EndsWith("runner"));
}

TEST_F(MenuTargetTest, ACloneThatOpensDocumentsTakesWhatItsTargetTakes) {
    InstanceConfig config = reader();
    config.openWithPassthrough = true;
    const InstanceRecord record = made(config);
    EXPECT_THAT(entryOf(record).exec, ::testing::EndsWith("runner %U"));
    EXPECT_THAT(entryOf(record).mimeTypes, ElementsAre("application/pdf", "image/png"));
    publishInMenu(record);
    EXPECT_EQ(objections(published(record)), "");
    EXPECT_THAT(read(entries() / "mimeinfo.cache"),
                HasSubstr("application/pdf=" + published(record).filename().string() + ";"));

    config.openWithPassthrough = false;
    config.registerAsBrowser = true;
    config.targetAppPath = "/missing.desktop";
    const DesktopEntry browser = entryOf(made(config));
    EXPECT_THAT(browser.exec, ::testing::EndsWith("runner %U"));
    EXPECT_THAT(browser.mimeTypes, Contains("x-scheme-handler/https"));
    EXPECT_THAT(browser.categories, ElementsAre("Network", "WebBrowser"));
}

TEST_F(MenuTargetTest, TheTargetsActionsAreOfferedAsFarAsTheCloneCanStartThem) {
    write(target(), targetEntry + "Actions=private;other;broken;\n"
                                  "[Desktop Action private]\nName=New \u202EPrivate Window\n"
                                  "Exec=/bin/true --private %u\n"
                                  "[Desktop Action other]\nName=Settings\nExec=settings\n"
                                  "[Desktop Action broken]\nName=Broken\nExec=/bin/true \"a\n");
    const InstanceRecord record = made(reader());
    publishInMenu(record);
    EXPECT_EQ(objections(published(record)), "");
    const DesktopEntry entry = readDesktopEntry(published(record));
    ASSERT_THAT(entry.actions, SizeIs(1));
    EXPECT_EQ(entry.actions[0].id, "private");
    EXPECT_EQ(entry.actions[0].name, "New Private Window");
    EXPECT_EQ(entry.actions[0].exec, entry.exec + " --action=private");
}

TEST_F(MenuTargetTest, AFlatpaksEntryBeginsWithItsId) {
    write(target(), targetEntry + "X-Flatpak=org.example.Reader\n");
    const MenuEntry entry = menuEntryOf(made(reader()));
    EXPECT_THAT(entry.fileName, ::testing::StartsWith("org.example.Reader.quorvel-"));
    EXPECT_THAT(entry.fileName, ::testing::EndsWith(".desktop"));
    EXPECT_EQ(entry.entry.startupWmClass, entry.word);
}

TEST_F(MenuTargetTest, AnIdThatLeadsOutOfTheMenuIsNotUsed) {
    for (const char* id : {"../../../evil", "a/b", ".hidden", "a b", "ä"}) {
        write(target(), targetEntry + "X-Flatpak=" + id + "\n");
        const InstanceRecord record = made(reader());
        EXPECT_THAT(menuEntryOf(record).fileName, ::testing::StartsWith("Quorvel-")) << id;
        publishInMenu(record);
        EXPECT_FALSE(fs::exists(home_ / "evil.quorvel"));
        fs::remove_all(record.bundleURL);
    }
    EXPECT_THAT(treeOf(entries()), SizeIs(1));
    MenuEntry outside = menuEntryOf(made(reader()));
    outside.fileName = "../outside.desktop";
    EXPECT_THROW(publishMenuEntry(outside, {}), DesktopEntryError);
    EXPECT_FALSE(fs::exists(entries().parent_path() / "outside.desktop"));
}

TEST_F(MenuTargetTest, OddActionsAndKeywordsAreLeftOut) {
    write(target(), targetEntry + "Actions=unseen;odd;\n"
                                  "[Desktop Action unseen]\nName=\u202E\nExec=/bin/true\n"
                                  "[Desktop Action odd]\nName=Odd\nIcon=a\\nb\nExec=/bin/true\n");
    const InstanceRecord record = made(reader());
    const DesktopEntry entry = entryOf(record);
    ASSERT_THAT(entry.actions, SizeIs(1));
    EXPECT_EQ(entry.actions[0].name, "Odd");
    EXPECT_EQ(entry.actions[0].icon, "");
    publishInMenu(record);
    EXPECT_TRUE(fs::exists(published(record)));
}

TEST_F(MenuTargetTest, TheWindowOfASiteIsABrowserForAddressesOnly) {
    InstanceConfig config;
    config.displayName = "Portal";
    config.kind = ShortcutKind::web;
    config.url = "https://portal.test";
    config.registerAsBrowser = true;
    EXPECT_THAT(entryOf(made(config)).mimeTypes,
                ElementsAre("x-scheme-handler/http", "x-scheme-handler/https"));
    config = reader();
    config.registerAsBrowser = true;
    EXPECT_THAT(entryOf(made(config)).mimeTypes, Contains("text/html"));
}

TEST_F(MenuTargetTest, ABrowserIsGivenAddresses) {
    write(target(), "[Desktop Entry]\nType=Application\nName=Reader\nExec=/bin/true %F\n");
    InstanceConfig config = reader();
    config.registerAsBrowser = true;
    EXPECT_TRUE(entryOf(made(config)).exec.ends_with(" %U"));
    config.registerAsBrowser = false;
    config.openWithPassthrough = true;
    EXPECT_TRUE(entryOf(made(config)).exec.ends_with(" %F"));
}

} // namespace
} // namespace quorvel::testing

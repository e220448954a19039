#include "LaunchKit/MenuEntries.h"

#include "Base/Error.h"
#include "LaunchKit/CloneDeletion.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/WindowWord.h"
#include "LaunchKit/WrapperFactory.h"
#include "LaunchKit/WrapperGenerator.h"
#include "Platform/desktop/MenuEntry.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/Process.h"
#include "tests/support/AppBundles.h"
#include "tests/support/EveryStep.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/TemporaryHome.h"

#include <gio/gdesktopappinfo.h>
#include <gmock/gmock.h>

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const std::string targetEntry = "[Desktop Entry]\n"
                                "Type=Application\n"
                                "Name=Reader\n"
                                "Exec=/bin/true --new %u\n"
                                "Categories=Office;Viewer;\n"
                                "Keywords=book;\n"
                                "MimeType=application/pdf;image/png;\n"
                                "StartupNotify=false\n"
                                "StartupWMClass=reader\n"
                                "DBusActivatable=true\n";

class MenuEntriesTest : public ::testing::Test {
protected:
    MenuEntriesTest() { write(target(), targetEntry); }

    [[nodiscard]] fs::path target() const { return home_ / "reader.desktop"; }
    [[nodiscard]] fs::path clones() const { return home_ / "Applications"; }
    [[nodiscard]] fs::path entries() const { return home_ / ".local/share/applications"; }
    [[nodiscard]] fs::path pictures(const std::string& size) const {
        return home_ / ".local/share/icons/hicolor" / size / "apps";
    }

    [[nodiscard]] static InstanceConfig command(const std::string& name) {
        InstanceConfig config = minimalConfig(name);
        config.kind = ShortcutKind::command;
        config.commandPath = "/bin/true";
        return config;
    }

    // An app clone's configuration, whose target is a desktop entry.
    [[nodiscard]] InstanceConfig reader(const std::string& name = "Work") const {
        InstanceConfig config = minimalConfig(name);
        config.targetAppPath = target().string();
        return config;
    }

    // A wrapper as the generator writes it.
    [[nodiscard]] InstanceRecord made(const InstanceConfig& config) const {
        const fs::path wrapper = makeWrapper(clones() / (config.displayName + ".app"), config);
        write(wrapper / "Contents/MacOS/runner", "#!/bin/sh\n");
        makeExecutable(wrapper / "Contents/MacOS/runner");
        write(wrapper / "Contents/Info.plist", "<plist/>");
        return {wrapper, config};
    }

    static void addIcon(const InstanceRecord& record, const std::string& bytes) {
        write(record.bundleURL / "Contents/Resources/AppIcon.icns", bytes);
    }

    [[nodiscard]] static DesktopEntry entryOf(const InstanceRecord& record) {
        return menuEntryOf(record).entry;
    }

    [[nodiscard]] fs::path published(const InstanceRecord& record) const {
        return entries() / menuEntryOf(record).fileName;
    }

    [[nodiscard]] std::map<std::string, std::string> menu() const {
        return treeOf(home_ / ".local/share");
    }

    [[nodiscard]] static QImage pictureIn(const fs::path& file) {
        return QImage::fromData(QByteArray::fromStdString(read(file)));
    }

    // What the desktops' own checker objects to.
    [[nodiscard]] static std::string objections(const fs::path& file) {
        return Process::capture({.executable = "/usr/bin/desktop-file-validate",
                                 .arguments = {"--no-hints", file.string()}},
                                4096);
    }

    TemporaryHome home_{};
};

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

TEST_F(MenuEntriesTest, ACloneOfAnEntryIsFiledWhereItsTargetIs) {
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

TEST_F(MenuEntriesTest, ACloneThatOpensDocumentsTakesWhatItsTargetTakes) {
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

TEST_F(MenuEntriesTest, TheTargetsActionsAreOfferedAsFarAsTheCloneCanStartThem) {
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

TEST_F(MenuEntriesTest, AFlatpaksEntryBeginsWithItsId) {
    write(target(), targetEntry + "X-Flatpak=org.example.Reader\n");
    const MenuEntry entry = menuEntryOf(made(reader()));
    EXPECT_THAT(entry.fileName, ::testing::StartsWith("org.example.Reader.quorvel-"));
    EXPECT_THAT(entry.fileName, ::testing::EndsWith(".desktop"));
    EXPECT_EQ(entry.entry.startupWmClass, entry.word);
}

TEST_F(MenuEntriesTest, AnIdThatLeadsOutOfTheMenuIsNotUsed) {
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

TEST_F(MenuEntriesTest, OddActionsAndKeywordsAreLeftOut) {
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

TEST_F(MenuEntriesTest, ABrowserIsGivenAddresses) {
    write(target(), "[Desktop Entry]\nType=Application\nName=Reader\nExec=/bin/true %F\n");
    InstanceConfig config = reader();
    config.registerAsBrowser = true;
    EXPECT_TRUE(entryOf(made(config)).exec.ends_with(" %U"));
    config.registerAsBrowser = false;
    config.openWithPassthrough = true;
    EXPECT_TRUE(entryOf(made(config)).exec.ends_with(" %F"));
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

TEST_F(MenuEntriesTest, AMonochromeTrayIconIsPublishedAndRepaired) {
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

TEST_F(MenuEntriesTest, APictureThatIsNoneLeavesAGenericOne) {
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

TEST_F(MenuEntriesTest, RepairsWhatAKilledPublicationLeaves) {
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

TEST_F(MenuEntriesTest, TheApplicationsDrawingIsRepairedAsLongAsTheIconIsMadeOfIt) {
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

TEST_F(MenuEntriesTest, RepairsWhatAKilledWithdrawalLeaves) {
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

TEST_F(MenuEntriesTest, AnEntryOfAReplacedCloneIsRepaired) {
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

TEST_F(MenuEntriesTest, WhatTheUserChangedInTheMenuStays) {
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

TEST_F(MenuEntriesTest, OnlyEntriesOfClonesThatAreGoneAreWithdrawn) {
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

TEST_F(MenuEntriesTest, OneCloneThatCannotBePublishedDoesNotKeepOthersFromIt) {
    const InstanceRecord impossible = made(command("two\nlines"));
    const InstanceRecord record = made(command("Work"));
    const MenuRepair repair = repairMenu({impossible, record});
    EXPECT_THAT(repair.problems, SizeIs(1));
    EXPECT_TRUE(fs::exists(published(record)));
}

} // namespace
} // namespace quorvel::testing

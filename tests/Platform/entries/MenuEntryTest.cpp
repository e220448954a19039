#include "Platform/entries/MenuEntry.h"

#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/EveryStep.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <gio/gdesktopappinfo.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const std::string word = "Quorvel-0123456789abcdef";

class MenuEntryTest : public ::testing::Test {
protected:
    [[nodiscard]] static MenuEntry menuEntry(const std::string& icon = word + "-1") {
        MenuEntry entry{word, word + ".desktop", {}};
        entry.entry.type = "Application";
        entry.entry.name = "Work";
        entry.entry.exec = "/bin/true";
        entry.entry.icon = icon;
        entry.entry.cloneId = "/apps/Work.app";
        entry.entry.startupWmClass = word;
        return entry;
    }

    static void publish(const MenuEntry& entry = menuEntry()) {
        publishMenuEntry(entry, {{48, "small"}, {256, "large"}, {0, "<svg/>"}});
    }

    static void withdraw() { withdrawMenuEntry("/apps/Work.app", word); }

    [[nodiscard]] std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& [name, content] : treeOf(data())) {
            if (content != "<folder>") {
                names.push_back(name);
            }
        }
        return names;
    }

    [[nodiscard]] fs::path data() const { return home_ / ".local/share"; }
    [[nodiscard]] fs::path applications() const { return data() / "applications"; }
    [[nodiscard]] fs::path theme() const { return data() / "icons/hicolor"; }

    TemporaryHome home_{};
};

TEST_F(MenuEntryTest, PublishesTheEntryAndItsPicturesAndNothingElse) {
    publish();
    EXPECT_THAT(files(), ElementsAre("applications/" + word + ".desktop",
                                     "icons/hicolor/256x256/apps/" + word + "-1.png",
                                     "icons/hicolor/48x48/apps/" + word + "-1.png",
                                     "icons/hicolor/scalable/apps/" + word + "-1.svg"));
    EXPECT_EQ(read(theme() / "48x48/apps" / (word + "-1.png")), "small");
    EXPECT_EQ(readDesktopEntry(applications() / (word + ".desktop")), menuEntry().entry);
}

TEST_F(MenuEntryTest, UsesTheSessionsOwnFolder) {
    const ScopedEnvironment data("XDG_DATA_HOME", (home_ / "elsewhere").string());
    publish();
    EXPECT_TRUE(fs::exists(home_ / "elsewhere/applications" / (word + ".desktop")));
    EXPECT_FALSE(fs::exists(home_ / ".local"));
}

TEST_F(MenuEntryTest, GioStartsWhatWasPublished) {
    publish();
    GDesktopAppInfo* info =
        g_desktop_app_info_new_from_filename((applications() / (word + ".desktop")).c_str());
    ASSERT_NE(info, nullptr);
    EXPECT_STREQ(g_app_info_get_name(G_APP_INFO(info)), "Work");
    EXPECT_STREQ(g_app_info_get_executable(G_APP_INFO(info)), "/bin/true");
    g_object_unref(info);
}

TEST_F(MenuEntryTest, ANewPictureTakesThePlaceOfTheOldUnderItsOwnName) {
    publish();
    publishMenuEntry(menuEntry(word + "-2"), {{128, "new"}});
    EXPECT_THAT(files(), ElementsAre("applications/" + word + ".desktop",
                                     "icons/hicolor/128x128/apps/" + word + "-2.png"));
    EXPECT_TRUE(hasMenuPicture(word + "-2", 128));
    EXPECT_FALSE(hasMenuPicture(word + "-1", 48));
}

TEST_F(MenuEntryTest, TheThemesFolderIsTouchedWhenAPictureIsNew) {
    publish();
    fs::last_write_time(theme(), fs::file_time_type::clock::now() - std::chrono::hours(1));
    const auto before = fs::last_write_time(theme());
    publish(menuEntry(word + "-2"));
    EXPECT_GT(fs::last_write_time(theme()), before);
}

TEST_F(MenuEntryTest, TheThemesFolderHasAnotherSecondAfterEachNewPicture) {
    const auto second = [&] {
        struct stat status {};
        EXPECT_EQ(::stat(theme().c_str(), &status), 0);
        return status.st_mtim.tv_sec;
    };
    publish();
    time_t before = second();
    for (const char* picture : {"-2", "-3", "-4"}) {
        publish(menuEntry(word + picture));
        EXPECT_NE(second(), before) << picture;
        before = second();
    }
}

TEST_F(MenuEntryTest, APictureIsThereBeforeTheEntryThatNamesIt) {
    publish();
    for (int step = 0;; ++step) {
        const Kill kill = killedBefore(step, [] { publish(menuEntry(word + "-2")); });
        if (kill == Kill::notPermitted) {
            GTEST_SKIP() << "the kernel forbids tracing";
        }
        const DesktopEntry entry = readDesktopEntry(applications() / (word + ".desktop"));
        ASSERT_TRUE(hasMenuPicture(entry.icon, 48)) << entry.icon << " at step " << step;
        for (const char* size : {"48x48", "256x256"}) {
            ASSERT_TRUE(fs::exists(theme() / size / "apps" / (entry.icon + ".png"))) << step;
        }
        if (kill == Kill::ended) {
            break;
        }
        publish();
    }
    for (const char* folder : {"applications", "icons/hicolor/48x48/apps"}) {
        for (const auto& file : fs::directory_iterator(data() / folder)) {
            if (file.path().filename().string().front() == '.') {
                fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(1));
            }
        }
    }
    write(applications() / ".quorvel-mine", "not a leftover");
    removeMenuLeftovers();
    EXPECT_THAT(directoryEntries(applications()).value(),
                ::testing::UnorderedElementsAre(word + ".desktop", ".quorvel-mine"));
}

TEST_F(MenuEntryTest, PicturesThatNoEntryNamesAreRemovedOnceTheyAreOld) {
    publish(menuEntry(word + "-2"));
    const fs::path folder = theme() / "48x48/apps";
    const fs::path old = folder / (word + "-1.png");
    const fs::path young = folder / (word + "-3.png");
    const fs::path others = folder / "Quorvel-fedcba9876543210-1.png";
    for (const fs::path& file : {old, young, others}) {
        write(file, "picture");
    }
    for (const fs::path& file : {old, others, folder / (word + "-2.png")}) {
        fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(1));
    }
    removeOldMenuPictures({{word, publishedMenuEntries().front().entry.icon}});
    EXPECT_FALSE(fs::exists(old));
    EXPECT_TRUE(fs::exists(young)) << "its entry may be about to be written";
    EXPECT_TRUE(fs::exists(others)) << "whose entry is not known";
    EXPECT_TRUE(hasMenuPicture(word + "-2", 48));
}

TEST_F(MenuEntryTest, OldPicturesAreRemovedThoughTheEntryNamesAThemesIcon) {
    publish(menuEntry(word + "-2"));
    const fs::path folder = theme() / "48x48/apps";
    const fs::path themes = folder / "web-browser.png";
    write(themes, "picture");
    for (const fs::path& file : {themes, folder / (word + "-2.png")}) {
        fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(1));
    }
    removeOldMenuPictures({{word, "web-browser"}});
    EXPECT_FALSE(hasMenuPicture(word + "-2", 48));
    EXPECT_TRUE(hasMenuPicture(word + "-2", 256)) << "which is young";
    EXPECT_TRUE(fs::exists(themes));
}

TEST_F(MenuEntryTest, PicturesThatAnEntryTakesUpAgainLookNew) {
    publish();
    const auto now = fs::file_time_type::clock::now();
    const fs::path own = theme() / "256x256/apps" / (word + "-1.png");
    const fs::path others = theme() / "256x256/apps/web-browser.png";
    write(others, "picture");
    for (const fs::path& file : {own, others}) {
        fs::last_write_time(file, now - std::chrono::hours(1));
    }
    publishMenuEntry(menuEntry(), {});
    EXPECT_GT(fs::last_write_time(own), now - std::chrono::minutes(1));
    publishMenuEntry(menuEntry("web-browser"), {});
    EXPECT_EQ(fs::last_write_time(others), now - std::chrono::hours(1));
}

TEST_F(MenuEntryTest, AnEmptyPictureDoesNotCount) {
    publish();
    write(theme() / "48x48/apps" / (word + "-1.png"), "");
    EXPECT_FALSE(hasMenuPicture(word + "-1", 48));
    fs::create_directories(theme() / "128x128/apps" / (word + "-1.png"));
    EXPECT_FALSE(hasMenuPicture(word + "-1", 128)) << "nor is a folder";
    EXPECT_TRUE(hasMenuPicture(word + "-1", 256));
}

TEST_F(MenuEntryTest, WithdrawingRemovesWhatWasPublished) {
    publish();
    withdraw();
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_NO_THROW(withdraw()) << "nothing is left to do";
}

TEST_F(MenuEntryTest, AnEntryIsFoundByItsMarkAndNotByItsName) {
    publish();
    fs::rename(applications() / (word + ".desktop"), applications() / "renamed.desktop");
    write(applications() / (word + ".desktop"),
          "[Desktop Entry]\nType=Application\nName=Work\nExec=/bin/true\n");
    MenuEntry other = menuEntry("");
    other.word = "Quorvel-fedcba9876543210";
    other.fileName = other.word + ".desktop";
    other.entry.cloneId = "/apps/Work.app2";
    publishMenuEntry(other, {});
    write(theme() / "48x48/apps/quorvel.png", "somebody else's");
    withdraw();
    EXPECT_THAT(files(), ElementsAre("applications/" + word + ".desktop",
                                     "applications/Quorvel-fedcba9876543210.desktop",
                                     "icons/hicolor/48x48/apps/quorvel.png"));
}

TEST_F(MenuEntryTest, AnotherProgramsEntryIsNotReplaced) {
    const std::string theirs = "[Desktop Entry]\nType=Application\nName=Mine\nExec=/bin/true\n";
    write(applications() / (word + ".desktop"), theirs);
    EXPECT_THROW(publish(), PlatformError);
    EXPECT_EQ(read(applications() / (word + ".desktop")), theirs);
    fs::remove(applications() / (word + ".desktop"));
    fs::create_symlink("/nowhere", applications() / (word + ".desktop"));
    EXPECT_THROW(publish(), PlatformError);
    EXPECT_THAT(files(), ElementsAre("applications/" + word + ".desktop")) << "no pictures";
}

TEST_F(MenuEntryTest, TheEntryIsFlushedBeforeItGetsItsName) {
    const std::vector<long> calls = systemCallsOf([] { publish(menuEntry("web-browser")); });
    if (calls.empty()) {
        GTEST_SKIP() << "processes may not be traced here";
    }
    const auto isRename = [](long call) {
#if defined(SYS_rename)
        return call == SYS_rename || call == SYS_renameat;
#else
        return call == SYS_renameat;
#endif
    };
    // Three pictures and the entry, each flushed before its own renaming.
    auto from = calls.begin();
    for (int file = 0; file < 4; ++file) {
        const auto rename = std::find_if(from, calls.end(), isRename);
        ASSERT_NE(rename, calls.end()) << file;
        EXPECT_EQ(std::count(from, rename, SYS_fsync), 1) << file;
        from = std::next(rename);
    }
    EXPECT_EQ(std::find_if(from, calls.end(), isRename), calls.end());
}

TEST_F(MenuEntryTest, AnEntryThatAPowerCutEmptiedIsPublishedAgainOrRemoved) {
    const fs::path entry = applications() / (word + ".desktop");
    const fs::path others = applications() / "Quorvel-fedcba9876543210.desktop";
    write(others, "");
    publish();
    fs::resize_file(entry, 0);
    publish();
    EXPECT_EQ(readDesktopEntry(entry), menuEntry().entry);
    fs::resize_file(entry, 0);
    withdraw();
    EXPECT_THAT(files(), ElementsAre("applications/" + others.filename().string()));
}

TEST_F(MenuEntryTest, AnEmptyFileThatMayBelongToSomethingElseIsNotReplaced) {
    const fs::path entry = applications() / (word + ".desktop");
    write(home_ / "empty", "");
    fs::create_directories(applications());
    fs::create_symlink(home_ / "empty", entry);
    EXPECT_THROW(publish(), PlatformError) << "a link";
    fs::remove(entry);
    fs::create_hard_link(home_ / "empty", entry);
    EXPECT_THROW(publish(), PlatformError) << "it has another name, too";
    withdraw();
    EXPECT_TRUE(fs::exists(entry));
    fs::remove(entry);
    ::mkfifo(entry.c_str(), 0600);
    EXPECT_THROW(publish(), PlatformError) << "a pipe";
    fs::remove(entry);
    write(entry, "\n");
    EXPECT_THROW(publish(), PlatformError) << "it isn't empty";
    fs::resize_file(entry, 0);
    if (::geteuid() == 0 && ::chown(entry.c_str(), 4242, 4242) == 0) {
        EXPECT_THROW(publish(), PlatformError) << "another user's";
    }
}

TEST_F(MenuEntryTest, ALinkIsReplacedAndNotWhatItLeadsTo) {
    publish();
    fs::rename(applications() / (word + ".desktop"), home_ / "kept.desktop");
    fs::create_symlink(home_ / "kept.desktop", applications() / (word + ".desktop"));
    const std::string before = read(home_ / "kept.desktop");
    MenuEntry changed = menuEntry();
    changed.entry.name = "Home";
    publish(changed);
    EXPECT_EQ(read(home_ / "kept.desktop"), before);
    EXPECT_FALSE(fs::is_symlink(applications() / (word + ".desktop")));
}

TEST_F(MenuEntryTest, AnEntryUnderAnOlderFileNameGoes) {
    publish();
    MenuEntry sandboxed = menuEntry();
    sandboxed.fileName = "org.example.App.quorvel-1.desktop";
    publish(sandboxed);
    EXPECT_THAT(directoryEntries(applications()).value(), ElementsAre(sandboxed.fileName));
}

TEST_F(MenuEntryTest, WhatAnEntryOpensIsKnownToDesktopsAtOnce) {
    MenuEntry browser = menuEntry();
    browser.entry.mimeTypes = {"x-scheme-handler/quorveltest"};
    publish(browser);
    const std::string known = "x-scheme-handler/quorveltest=" + word + ".desktop;";
    EXPECT_THAT(read(applications() / "mimeinfo.cache"), HasSubstr(known));
    publish();
    EXPECT_THAT(read(applications() / "mimeinfo.cache"), Not(HasSubstr(known)))
        << "it opens nothing any more";
    publish(browser);
    withdraw();
    EXPECT_THAT(read(applications() / "mimeinfo.cache"), Not(HasSubstr(known)));
}

TEST_F(MenuEntryTest, WithoutTheMimeToolItIsPublishedAllTheSame) {
    const ScopedEnvironment path("PATH", (home_ / "empty").string());
    MenuEntry browser = menuEntry();
    browser.entry.mimeTypes = {"text/html"};
    publish(browser);
    EXPECT_THAT(directoryEntries(applications()).value(), ElementsAre(word + ".desktop"));
}

TEST_F(MenuEntryTest, AToolThatNeverEndsIsNotWaitedForLong) {
    const fs::path tool = home_ / "bin/update-desktop-database";
    write(tool, "#!/bin/sh\nexec sleep 20\n");
    fs::permissions(tool, fs::perms{0755});
    MenuEntry browser = menuEntry();
    browser.entry.mimeTypes = {"text/html"};
    const auto start = std::chrono::steady_clock::now();
    {
        const ScopedEnvironment path("PATH", (home_ / "bin").string() + ":/usr/bin:/bin");
        publish(browser);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(MenuEntryTest, AnEntryThatCannotBeWrittenLeavesTheOlderOne) {
    publish();
    const auto before = treeOf(data());
    MenuEntry broken = menuEntry(word + "-2");
    broken.entry.exec = "/bin/a\nb";
    EXPECT_THROW(publish(broken), DesktopEntryError);
    EXPECT_EQ(treeOf(data()), before);
}

TEST_F(MenuEntryTest, AFolderThatCannotBeWrittenLeavesTheOlderEntry) {
    const TemporaryFolder folder;
    const ScopedEnvironment data("XDG_DATA_HOME", folder.path().string());
    EXPECT_TRUE(asUnprivilegedUser(folder.path(), [&] {
        publish();
        fs::permissions(folder / "applications", fs::perms{0555});
        try {
            publish(menuEntry(word + "-2"));
        } catch (const PlatformError& error) {
            return error.code() == std::errc::permission_denied;
        }
        return false;
    }));
    EXPECT_EQ(readDesktopEntry(folder.path() / "applications" / (word + ".desktop")),
              menuEntry().entry);
    EXPECT_TRUE(hasMenuPicture(word + "-1", 48));
}

TEST_F(MenuEntryTest, ListsOnlyEntriesOfClones) {
    publish();
    write(applications() / "other.desktop", "[Desktop Entry]\nType=Application\nName=A\nExec=a\n");
    write(applications() / "broken.desktop", "X-Quorvel-Clone=/apps/Work.app\n");
    write(applications() / "comment.desktop",
          "[Desktop Entry]\n#X-Quorvel-Clone=/apps/Work.app\nName=A\n");
    ::mkfifo((applications() / "pipe.desktop").c_str(), 0600);
    const auto published = publishedMenuEntries();
    ASSERT_EQ(published.size(), 1U);
    EXPECT_EQ(published[0].fileName, word + ".desktop");
    EXPECT_EQ(published[0].entry.cloneId, "/apps/Work.app");
}

} // namespace
} // namespace quorvel::testing

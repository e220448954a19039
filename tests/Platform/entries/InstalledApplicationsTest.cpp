#include "Platform/entries/InstalledApplications.h"

#include "Platform/homes/XdgFolders_linux.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <sys/stat.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

const std::string head = "[Desktop Entry]\nType=Application\n";

class InstalledApplicationsTest : public ::testing::Test {
protected:
    InstalledApplicationsTest() {
        write(folder_ / "bin/app", "#!/bin/sh\n");
        fs::permissions(folder_ / "bin/app", fs::perms{0755});
    }

    void entry(const std::string& path, const std::string& keys = "") const {
        write(folder_ / path, head + "Name=" + path + "\nExec=app %U\n" + keys);
    }

    [[nodiscard]] std::vector<InstalledApplication>
    scan(const std::vector<std::string>& names) const {
        std::vector<fs::path> folders;
        folders.reserve(names.size());
        for (const std::string& name : names) {
            folders.push_back(folder_ / name);
        }
        return installedApplications(folders);
    }

    [[nodiscard]] std::vector<std::string> ids(const std::vector<std::string>& names = {
                                                   "a"}) const {
        std::vector<std::string> result;
        for (const InstalledApplication& application : scan(names)) {
            result.push_back(application.id);
        }
        return result;
    }

    TemporaryFolder folder_{};
    ScopedEnvironment path_{"PATH", (folder_ / "bin").string()};
    ScopedEnvironment desktop_{"XDG_CURRENT_DESKTOP", "ubuntu:GNOME"};
};

TEST_F(InstalledApplicationsTest, ReportsWhereEachIsAndWhatItSays) {
    entry("a/one.desktop", "Icon=one\n");
    const auto found = scan({"a"});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].id, "one.desktop");
    EXPECT_EQ(found[0].file, folder_ / "a/one.desktop");
    EXPECT_EQ(found[0].entry.name, "a/one.desktop");
    EXPECT_EQ(found[0].entry.exec, "app %U");
    EXPECT_EQ(found[0].entry.icon, "one");
}

TEST_F(InstalledApplicationsTest, TheFirstEntryOfAnIdCounts) {
    entry("a/one.desktop");
    entry("b/one.desktop");
    entry("b/two.desktop");
    const auto found = scan({"a", "missing", "b"});
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].file, folder_ / "a/one.desktop");
    EXPECT_EQ(found[1].file, folder_ / "b/two.desktop");
    EXPECT_EQ(scan({"b", "a"}).size(), 2U);
}

TEST_F(InstalledApplicationsTest, WhatIsHiddenOrUnreadableHidesTheOthersOfItsId) {
    entry("a/hidden.desktop", "Hidden=true\n");
    write(folder_ / "a/broken.desktop", "no entry");
    entry("b/hidden.desktop");
    entry("b/broken.desktop");
    EXPECT_THAT(ids({"a", "b"}), IsEmpty());
    EXPECT_THAT(ids({"b", "a"}), UnorderedElementsAre("hidden.desktop", "broken.desktop"));
}

TEST_F(InstalledApplicationsTest, FoldersInsideGiveLongerIds) {
    entry("a/kde/office/write.desktop");
    entry("b/kde-office-write.desktop");
    const auto found = scan({"a", "b"});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].id, "kde-office-write.desktop");
    EXPECT_EQ(found[0].file, folder_ / "a/kde/office/write.desktop");
}

TEST_F(InstalledApplicationsTest, LeavesOutWhatNobodyWantsToClone) {
    entry("a/shown.desktop");
    entry("a/nodisplay.desktop", "NoDisplay=true\n");
    entry("a/hidden.desktop", "Hidden=true\n");
    entry("a/terminal.desktop", "Terminal=true\n");
    entry("a/clone.desktop", "X-Quorvel-Clone=1\n");
    entry("a/app.quorvel.Quorvel.desktop");
    entry("a/elsewhere.desktop", "OnlyShowIn=KDE;\n");
    entry("a/nothere.desktop", "NotShowIn=GNOME;\n");
    entry("a/tried.desktop", "TryExec=app\n");
    entry("a/missing.desktop", "TryExec=no-such-program\n");
    write(folder_ / "a/link.desktop", "[Desktop Entry]\nType=Link\nName=a\nExec=app\n");
    write(folder_ / "a/nameless.desktop", head + "Exec=app\n");
    write(folder_ / "a/gone.desktop", head + "Name=a\nExec=no-such-program\n");
    write(folder_ / "a/quote.desktop", head + "Name=a\nExec=app \"open\n");
    write(folder_ / "a/empty.desktop", head + "Name=a\n");
    write(folder_ / "a/env.desktop", head + "Name=a\nExec=env A=b app\n");
    write(folder_ / "a/note.txt", head + "Name=a\nExec=app\n");
    EXPECT_THAT(ids(), UnorderedElementsAre("shown.desktop", "tried.desktop", "env.desktop"));
}

TEST_F(InstalledApplicationsTest, IsNotHeldUpByOddFiles) {
    entry("a/fine.desktop");
    ASSERT_EQ(::mkfifo((folder_ / "a/fifo.desktop").c_str(), 0600), 0);
    fs::create_directory(folder_ / "a/folder.desktop");
    fs::create_symlink("loop.desktop", folder_ / "a/loop.desktop");
    fs::create_symlink("nowhere", folder_ / "a/dangling.desktop");
    write(folder_ / "a/large.desktop", head + "Name=a\nExec=app\n#" + std::string(4U << 20U, 'x'));
    fs::create_symlink(".", folder_ / "a/again");
    fs::create_symlink("..", folder_ / "a/up");
    fs::create_symlink("fine.desktop", folder_ / "a/link.desktop");
    const auto found = ids();
    EXPECT_EQ(std::count(found.begin(), found.end(), "fine.desktop"), 1);
    EXPECT_EQ(std::count(found.begin(), found.end(), "link.desktop"), 1);
    EXPECT_EQ(found.size(), 2U) << "what leads back is not gone through again";
}

TEST_F(InstalledApplicationsTest, LooksNoDeeperThanItSays) {
    std::string path = "a";
    for (int depth = 0; depth < maxEntryDepth + 3; ++depth) {
        entry(path + "/x.desktop");
        path += "/d";
    }
    EXPECT_EQ(ids().size(), static_cast<std::size_t>(maxEntryDepth) + 1);
}

TEST_F(InstalledApplicationsTest, LooksAtNoMoreFilesThanItSays) {
    write(folder_ / "empty", "");
    fs::create_directories(folder_ / "a/z");
    for (std::size_t number = 0; number < maxEntryFiles; ++number) {
        fs::create_hard_link(folder_ / "empty",
                             folder_ / ("a/" + std::to_string(number) + ".desktop"));
    }
    entry("a/z/late.desktop");
    entry("b/other.desktop");
    EXPECT_THAT(ids({"a", "b"}), ElementsAre("other.desktop"));
    fs::remove(folder_ / "a/0.desktop");
    EXPECT_THAT(ids({"a", "b"}), ElementsAre("z-late.desktop", "other.desktop"));
}

TEST_F(InstalledApplicationsTest, FoldersComeFromTheSession) {
    const TemporaryHome home;
    const ScopedEnvironment dataHome("XDG_DATA_HOME", "");
    const ScopedEnvironment dataFolders("XDG_DATA_DIRS", "");
    const std::string own = (home / ".local/share").string();
    EXPECT_THAT(xdgDataFolders(),
                ElementsAre(own, "/usr/local/share", "/usr/share", own + "/flatpak/exports/share",
                            "/var/lib/flatpak/exports/share", "/var/lib/snapd/desktop"));
    const ScopedEnvironment otherHome("XDG_DATA_HOME", "/data/ann/");
    const ScopedEnvironment others("XDG_DATA_DIRS", "/x:relative::/var/lib/snapd/desktop/:/x/:/y");
    EXPECT_THAT(xdgDataFolders(),
                ElementsAre("/data/ann", "/x", "/var/lib/snapd/desktop", "/y",
                            "/data/ann/flatpak/exports/share", "/var/lib/flatpak/exports/share"));
    EXPECT_EQ(applicationEntryFolders().front(), "/data/ann/applications");
    const ScopedEnvironment relative("XDG_DATA_HOME", "data");
    EXPECT_EQ(xdgDataFolders().front(), own);
}

// What GIO shows and what the scan finds, as lines of the same form.
class InstalledApplicationsTestAgainstGio : public ::testing::Test {
protected:
    static std::vector<std::string> theirs() {
        std::vector<std::string> lines;
        FILE* pipe = ::popen(QUORVEL_GIO_APPLICATIONS, "r");
        std::string text;
        for (int character = std::fgetc(pipe); character != EOF; character = std::fgetc(pipe)) {
            text.push_back(static_cast<char>(character));
        }
        EXPECT_EQ(::pclose(pipe), 0);
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    static std::vector<std::string> ours() {
        std::vector<std::string> lines;
        for (const auto& [id, file, entry] : installedApplications()) {
            lines.push_back(id + "\t" + entry.name + "\t" + entry.exec + "\t" + entry.icon);
        }
        return lines;
    }
};

TEST_F(InstalledApplicationsTestAgainstGio, WhatIsInstalledIsTheSame) {
    const auto expected = theirs();
    if (expected.empty()) {
        GTEST_SKIP() << "no applications are installed";
    }
    for (const char* language : {"", "de_AT.UTF-8", "sr@latin", "zh_TW"}) {
        const ScopedEnvironment languages("LANGUAGE", language);
        EXPECT_THAT(ours(), ::testing::UnorderedElementsAreArray(theirs())) << language;
    }
}

TEST_F(InstalledApplicationsTestAgainstGio, OddEntriesAreTheSame) {
    const TemporaryFolder folder;
    const ScopedEnvironment home("XDG_DATA_HOME", (folder / "home").string());
    const ScopedEnvironment others("XDG_DATA_DIRS",
                                   (folder / "x").string() + ":" + (folder / "y").string());
    const ScopedEnvironment desktop("XDG_CURRENT_DESKTOP", "KDE");
    const auto entry = [&](const std::string& path, const std::string& keys) {
        write(folder / path, head + "Name=" + path + "\n" + keys);
    };
    entry("home/applications/own.desktop", "Exec=sh\n");
    entry("x/applications/own.desktop", "Exec=true\n");
    entry("home/applications/deleted.desktop", "Exec=sh\nHidden=true\n");
    entry("x/applications/deleted.desktop", "Exec=sh\n");
    write(folder / "home/applications/broken.desktop", "[Desktop Entry\n");
    entry("x/applications/broken.desktop", "Exec=sh\n");
    entry("x/applications/sub/one.desktop", "Exec=sh \"a b\"\nIcon=i\n");
    entry("y/applications/sub-one.desktop", "Exec=true\n");
    entry("y/applications/space.desktop", "Exec = sh\n Icon=leading\n");
    entry("y/applications/crlf.desktop", "Exec=sh\r\nIcon=x\r\n");
    entry("y/applications/escapes.desktop", "Exec=sh \\\\\"a\\s\\n\\\\\n");
    entry("y/applications/twice.desktop", "Exec=false\nExec=sh\n");
    entry("y/applications/kde.desktop", "Exec=sh\nOnlyShowIn=KDE;\n");
    entry("y/applications/gnome.desktop", "Exec=sh\nOnlyShowIn=GNOME;\n");
    entry("y/applications/notkde.desktop", "Exec=sh\nNotShowIn=KDE;\n");
    entry("y/applications/tried.desktop", "Exec=sh\nTryExec=no-such-program\n");
    entry("y/applications/gone.desktop", "Exec=no-such-program\n");
    entry("y/applications/quote.desktop", "Exec=sh \"open\n");
    entry("y/applications/nodisplay.desktop", "Exec=sh\nNoDisplay=true\n");
    entry("y/applications/yes.desktop", "Exec=sh\nNoDisplay=1\n");
    entry("y/applications/terminal.desktop", "Exec=sh\nTerminal=true\n");
    write(folder / "y/applications/latin.desktop", head + "Name=caf\xe9\nExec=sh\n");
    write(folder / "y/applications/link.desktop", "[Desktop Entry]\nType=Link\nName=l\nExec=sh\n");
    const auto expected = theirs();
    EXPECT_GE(expected.size(), 6U);
    // The one without a name that can be read is "Unnamed" in GIO, and left out here.
    std::vector<std::string> named;
    std::copy_if(expected.begin(), expected.end(), std::back_inserter(named),
                 [](const std::string& line) { return !line.starts_with("latin.desktop"); });
    EXPECT_THAT(ours(), ::testing::UnorderedElementsAreArray(named));
}

} // namespace
} // namespace quorvel::testing

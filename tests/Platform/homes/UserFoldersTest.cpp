#include "Platform/homes/UserFolders.h"

#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

TEST(UserFoldersTest, AreThoseThatEveryUserHas) {
    const TemporaryHome home;
    const auto folders = userFolders();
    for (const char* name : {"Desktop", "Documents", "Downloads", "Library", "Movies", "Music",
                             "Pictures", "Public", "Templates", "Videos", ".ssh", ".gnupg",
                             ".config", ".local", ".cache", ".mozilla", ".var", "snap"}) {
        EXPECT_THAT(folders, Contains(home / name));
    }
}

TEST(UserFoldersTest, IncludeTheNamesFromDesktopSettings) {
    const TemporaryHome home;
    const ScopedEnvironment settings("XDG_CONFIG_HOME", (home / "settings").string());
    write(home / ".config/user-dirs.dirs", "# made by the desktop\n"
                                           "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
                                           "XDG_MUSIC_DIR=\"/data/Musik\"\n"
                                           "XDG_VIDEOS_DIR=\"relative\"\n"
                                           "XDG_BROKEN_DIR=\"\n"
                                           "PATH=\"/bin\"\n");
    write(home / "settings/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n");
    EXPECT_THAT(renamedUserFolders(home.path()),
                UnorderedElementsAre(home / "Dokumente", "/data/Musik", home / "Schreibtisch"));
    EXPECT_THAT(userFolders(), Contains(home / "Dokumente"));
}

TEST(UserFoldersTest, EachKindHasTheNameThatTheDesktopGaveIt) {
    const TemporaryHome home;
    const ScopedEnvironment settings("XDG_CONFIG_HOME", (home / "settings").string());
    write(home / ".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/old\"\n"
                                           "XDG_DOCUMENTS_DIR=\"/data/Dokumente/\"\n");
    write(home / "settings/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Herunter\"\n"
                                            "XDG_DESKTOP_DIR=\"$HOME/\"\n");
    EXPECT_EQ(userFolder("Downloads", home.path()), home / "Herunter");
    EXPECT_EQ(userFolder("Documents", home.path()), "/data/Dokumente");
    EXPECT_EQ(userFolder("Desktop", home.path()), home / "Desktop"); // not the home itself
}

TEST(UserFoldersTest, AreTheUsualOnesWithoutDesktopSettings) {
    const TemporaryHome home;
    const ScopedEnvironment settings("XDG_CONFIG_HOME", (home / "none").string());
    EXPECT_THAT(renamedUserFolders(home.path()), IsEmpty());
}

} // namespace
} // namespace quorvel

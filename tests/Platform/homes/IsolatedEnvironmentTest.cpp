#include "Platform/homes/IsolatedEnvironment.h"

#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace {

namespace fs = std::filesystem;
using namespace testing;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Key;
using ::testing::Not;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

class IsolatedEnvironmentTest : public ::testing::Test {
protected:
    IsolatedEnvironmentTest() {
        fs::create_directories(home);
        fs::create_directory(runtime);
        ::chmod(runtime.c_str(), 0700);
    }

    [[nodiscard]] Environment environment(const IsolationOptions& options = {}) const {
        return isolatedEnvironment(home, session, options);
    }
    [[nodiscard]] std::string userDirs() const { return read(home + "/.config/user-dirs.dirs"); }
    [[nodiscard]] static mode_t modeOf(const std::string& path) {
        struct stat status {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777U;
    }

    const TemporaryHome realHome;
    const TemporaryFolder folder;
    const std::string home = (folder / "clone").string();
    const fs::path runtime = folder / "run";
    Environment session{{"XDG_RUNTIME_DIR", runtime.string()}};
};

// Serves as a runtime folder, whose path is short.
class ShortFolder {
public:
    ShortFolder() {
        if (::mkdtemp(path_.data()) == nullptr) {
            throw std::runtime_error("no folder could be made in /tmp");
        }
    }
    ShortFolder(const ShortFolder&) = delete;
    ShortFolder& operator=(const ShortFolder&) = delete;
    ~ShortFolder() { fs::remove_all(path_); }

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] fs::path operator/(std::string_view name) const { return fs::path(path_) / name; }

private:
    std::string path_ = "/tmp/qXXXXXX";
};

TEST_F(IsolatedEnvironmentTest, EveryDataFolderIsBelowTheHome) {
    session["XDG_CONFIG_HOME"] = "/elsewhere/config";
    const Environment expected{{"XDG_CONFIG_HOME", home + "/.config"},
                               {"XDG_DATA_HOME", home + "/.local/share"},
                               {"XDG_STATE_HOME", home + "/.local/state"},
                               {"XDG_CACHE_HOME", home + "/.cache"},
                               {"GSETTINGS_BACKEND", "keyfile"}};
    const Environment set = environment();
    for (const auto& variable : expected) {
        EXPECT_THAT(set, Contains(variable));
    }
}

TEST_F(IsolatedEnvironmentTest, NothingIsSetForTheUsersOwnHome) {
    EXPECT_THAT(isolatedEnvironment(realHome.path(), session), IsEmpty());
    EXPECT_TRUE(fs::is_empty(realHome.path()));
}

TEST_F(IsolatedEnvironmentTest, TheDisplaysKeyIsFoundInTheRealHome) {
    EXPECT_THAT(environment(), Not(Contains(Key("XAUTHORITY"))));
    write(realHome / ".Xauthority", "cookie");
    EXPECT_EQ(environment().at("XAUTHORITY"), realHome / ".Xauthority");
    session["XAUTHORITY"] = "/run/key";
    EXPECT_THAT(environment(), Not(Contains(Key("XAUTHORITY"))));
}

TEST_F(IsolatedEnvironmentTest, TheTemporaryFolderIsShortPrivateAndAlwaysTheSame) {
    const ShortFolder place;
    session["XDG_RUNTIME_DIR"] = place.path();
    const std::string temporary = environment().at("TMPDIR");
    ASSERT_THAT(temporary, StartsWith((place / "quorvel/").string()));
    EXPECT_EQ(modeOf(temporary), 0700U);
    EXPECT_EQ(temporary.size(), (place / "quorvel/").string().size() + 10);
    EXPECT_EQ(environment().at("TMPDIR"), temporary);
    const std::string other = (folder / "other").string();
    fs::create_directory(other);
    EXPECT_NE(isolatedEnvironment(other, session).at("TMPDIR"), temporary);
}

TEST_F(IsolatedEnvironmentTest, WithoutAUsableRuntimeFolderTheTemporaryFolderIsInTmp) {
    const std::string own = "/tmp/quorvel-" + std::to_string(::geteuid()) + "/";
    const bool wasThere = fs::exists(own);
    for (const std::string& unusable :
         {std::string(), std::string("relative"), (folder / "missing").string(),
          (folder / std::string(60, 'x')).string()}) {
        session["XDG_RUNTIME_DIR"] = unusable;
        const std::string temporary = environment().at("TMPDIR");
        EXPECT_THAT(temporary, StartsWith(own)) << unusable;
        EXPECT_EQ(modeOf(temporary), 0700U);
        fs::remove(temporary);
    }
    if (!wasThere) {
        fs::remove(own);
    }
}

TEST_F(IsolatedEnvironmentTest, AFolderThatOthersCanReadIsNotUsedAsTemporaryFolder) {
    const ShortFolder place;
    session["XDG_RUNTIME_DIR"] = place.path();
    fs::create_directory(place / "quorvel");
    ::chmod((place / "quorvel").c_str(), 0755);
    const std::string temporary = environment().at("TMPDIR");
    EXPECT_THAT(temporary, Not(StartsWith(place.path())));
    fs::remove(temporary);
}

TEST_F(IsolatedEnvironmentTest, FontsAndThemesAreTheUsersAndOtherDataIsNot) {
    for (const char* name : {"fonts", "icons", "katepart5", "gtksourceview-4"}) {
        fs::create_directories(realHome / ".local/share" / name);
    }
    const std::string links = home + "/.local/share/quorvel/session-data";
    EXPECT_EQ(environment().at("XDG_DATA_DIRS"), links + ":/usr/local/share:/usr/share");
    std::vector<std::string> found;
    for (const auto& item : fs::directory_iterator(links)) {
        EXPECT_EQ(fs::read_symlink(item), realHome / ".local/share" / item.path().filename());
        found.push_back(item.path().filename());
    }
    EXPECT_THAT(found, UnorderedElementsAre("fonts", "icons"));
}

TEST_F(IsolatedEnvironmentTest, LinksToTheUsersDataAreRenewedAtEachStart) {
    fs::create_directories(realHome / ".local/share/fonts");
    fs::create_directories(realHome / ".local/share/mime");
    (void)environment();
    const ScopedEnvironment data("XDG_DATA_HOME", (folder / "data").string());
    session["XDG_DATA_DIRS"] = "/opt/share";
    fs::create_directories(folder / "data/fonts");
    const std::string links = home + "/.local/share/quorvel/session-data";
    EXPECT_EQ(environment().at("XDG_DATA_DIRS"), links + ":/opt/share");
    EXPECT_EQ(fs::read_symlink(links + "/fonts"), folder / "data/fonts");
    EXPECT_FALSE(fs::is_symlink(links + "/mime"));
}

TEST_F(IsolatedEnvironmentTest, ALinkInTheHomeLeadsNothingElsewhere) {
    fs::create_directories(folder / "elsewhere");
    fs::create_directory_symlink(folder / "elsewhere", home + "/.local");
    fs::create_directory_symlink(folder / "elsewhere", home + "/.config");
    EXPECT_THAT(environment(), Not(Contains(Key("XDG_DATA_DIRS"))));
    EXPECT_TRUE(fs::is_empty(folder / "elsewhere"));
}

TEST_F(IsolatedEnvironmentTest, AFolderThatTheUserSwitchedOffIsNotTheWholeHome) {
    write(realHome / ".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/\"\n"
                                               "XDG_MUSIC_DIR=\"$HOME/\"\n");
    (void)environment();
    EXPECT_THAT(userDirs(), ::testing::HasSubstr("XDG_DOCUMENTS_DIR=\"" +
                                                 (realHome / "Documents").string() + "\"\n"));
    EXPECT_THAT(userDirs(), ::testing::HasSubstr("XDG_MUSIC_DIR=\"$HOME/\"\n"));
}

TEST_F(IsolatedEnvironmentTest, FlatpakIsToldWhereTheUsersApplicationsAre) {
    EXPECT_THAT(environment(), Not(Contains(Key("FLATPAK_USER_DIR"))));
    EXPECT_EQ(environment({.usesFlatpak = true}).at("FLATPAK_USER_DIR"),
              realHome / ".local/share/flatpak");
    session["FLATPAK_USER_DIR"] = "/data/flatpak";
    EXPECT_EQ(environment({.usesFlatpak = true}).at("FLATPAK_USER_DIR"), "/data/flatpak");
}

TEST_F(IsolatedEnvironmentTest, SharedFoldersAreTheUsersOwnUnderTheirRealNames) {
    write(realHome / ".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Téléchargements\"\n"
                                               "XDG_MUSIC_DIR=\"$HOME/Musique\"\n"
                                               "XDG_DOCUMENTS_DIR=\"/data/papers\"\n");
    (void)environment();
    EXPECT_THAT(userDirs(), ::testing::EndsWith("XDG_DOWNLOAD_DIR=\"" +
                                                (realHome / "Téléchargements").string() +
                                                "\"\nXDG_MUSIC_DIR=\"$HOME/Musique\"\n"
                                                "XDG_DOCUMENTS_DIR=\"/data/papers\"\n"
                                                "XDG_DESKTOP_DIR=\"" +
                                                (realHome / "Desktop").string() + "\"\n"));
}

TEST_F(IsolatedEnvironmentTest, FoldersThatAreNotSharedStayInTheHome) {
    (void)environment({.sharesUserFolders = false});
    EXPECT_THAT(userDirs(), ::testing::EndsWith("XDG_DESKTOP_DIR=\"$HOME/Desktop\"\n"
                                                "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n"
                                                "XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n"));
    (void)environment({.sharesUserFolders = true});
    EXPECT_THAT(userDirs(), ::testing::HasSubstr((realHome / "Downloads").string()));
}

TEST_F(IsolatedEnvironmentTest, FoldersOutsideTheUsersHomeAreNotSharedByAccident) {
    write(realHome / ".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"/data/papers\"\n"
                                               "XDG_MUSIC_DIR=\"/data/music/\"\n");
    (void)environment({.sharesUserFolders = false});
    // Under the name by which a migration finds it.
    EXPECT_THAT(userDirs(), ::testing::HasSubstr("XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n"
                                                 "XDG_MUSIC_DIR=\"$HOME/music\"\n"));
    (void)environment({.sharesUserFolders = true});
    EXPECT_THAT(userDirs(), ::testing::HasSubstr("XDG_DOCUMENTS_DIR=\"/data/papers\"\n"
                                                 "XDG_MUSIC_DIR=\"$HOME/music\"\n"));
}

TEST_F(IsolatedEnvironmentTest, AFileWrittenByAnotherProgramIsKept) {
    const std::string own = "XDG_DOWNLOAD_DIR=\"$HOME/mine\"\n";
    write(home + "/.config/user-dirs.dirs", own);
    (void)environment();
    EXPECT_EQ(userDirs(), own);
}

TEST_F(IsolatedEnvironmentTest, JavaIsToldItsHomeOnlyWhereItIsUsed) {
    EXPECT_THAT(environment(), Not(Contains(Key("JAVA_TOOL_OPTIONS"))));
    session["JAVA_TOOL_OPTIONS"] = "-Xmx1g";
    const Environment set = environment({.usesJava = true});
    EXPECT_EQ(set.at("JAVA_TOOL_OPTIONS"),
              "-Xmx1g -Duser.home=" + home + " -Djava.io.tmpdir=" + set.at("TMPDIR"));
    const std::string spaced = (folder / "two words").string();
    fs::create_directory(spaced);
    EXPECT_THAT(isolatedEnvironment(spaced, session, {.usesJava = true}).at("JAVA_TOOL_OPTIONS"),
                ::testing::HasSubstr("\"-Duser.home=" + spaced + "\""));
}

TEST_F(IsolatedEnvironmentTest, TheTemporaryFolderIsRemovedWithEverythingInIt) {
    write(folder / "outside/file", "x");
    for (const ShortFolder runtimeFolder; const char* place : {"", "/somewhere/else"}) {
        session["XDG_RUNTIME_DIR"] = *place == '\0' ? runtimeFolder.path() : place;
        const fs::path temporary = environment().at("TMPDIR");
        const std::string other =
            isolatedEnvironment((folder / "other").string(), session).at("TMPDIR");
        write(temporary / "a/file", "x");
        fs::create_directory_symlink(folder / "outside", temporary / "link");
        removeTemporaryFolder(home, session);
        EXPECT_FALSE(fs::exists(temporary)) << temporary;
        EXPECT_TRUE(fs::exists(other)) << "another home's";
        EXPECT_TRUE(fs::exists(folder / "outside/file"));
        removeTemporaryFolder(home, session);
        removeTemporaryFolder((folder / "other").string(), session);
    }
}

TEST_F(IsolatedEnvironmentTest, ATemporaryFolderBehindALinkOrWithAMountInItStays) {
    const ShortFolder runtimeFolder;
    session["XDG_RUNTIME_DIR"] = runtimeFolder.path();
    const fs::path temporary = environment().at("TMPDIR");
    write(temporary / "mine", "x");
    fs::rename(temporary.parent_path(), folder / "real");
    fs::create_directory_symlink(folder / "real", temporary.parent_path());
    removeTemporaryFolder(home, session);
    EXPECT_TRUE(fs::exists(temporary / "mine"));

    fs::remove(temporary.parent_path());
    fs::rename(folder / "real", temporary.parent_path());
    write(folder / "foreign/file", "x");
    fs::create_directory(temporary / "point");
    const auto problem = inPrivateMounts([&]() -> std::string {
        bindMount(folder / "foreign", temporary / "point");
        removeTemporaryFolder(home, session);
        return fs::exists(folder / "foreign/file") && fs::exists(temporary / "mine") ? "" : "gone";
    });
    EXPECT_EQ(problem.value_or(""), "");
    removeTemporaryFolder(home, session);
    EXPECT_FALSE(fs::exists(temporary)) << "once nothing is mounted";
}

} // namespace
} // namespace quorvel

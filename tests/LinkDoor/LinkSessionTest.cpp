#include "LinkDoor/LinkSession.h"

#include "Platform/homes/UserPaths.h"
#include "tests/support/TemporaryHome.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::Key;
using ::testing::Not;
using ::testing::Pair;
namespace fs = std::filesystem;

const Environment session{{"HOME", "/home/u"},
                          {"PATH", "/usr/bin:/bin"},
                          {"DISPLAY", ":0"},
                          {"LANG", "C"},
                          {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/bus"},
                          {"ODD", "two\nlines=and \xFF"}};
const Environment clone{{"HOME", "/clone"},
                        {"PATH", "/clone/bin:/usr/bin:/bin"},
                        {"DISPLAY", ":1"},
                        {"XDG_ACTIVATION_TOKEN", "token"},
                        {"DESKTOP_STARTUP_ID", "id"},
                        {"WAYLAND_DISPLAY", "wayland-1"},
                        {"LANG", "C"},
                        {"ADDED", ""},
                        {"QUORVEL_CLONE_HOME", "/clone"},
                        {"QUORVEL_LINK_HOPS", "1"},
                        {"QUORVEL_ANYTHING", "x"},
                        {"DBUS_SESSION_BUS_ADDRESS", "disabled:"}};

TEST(LinkSessionTest, KeepsTheSessionsValueOfEveryVariableThatDiffers) {
    const LinkSession between = LinkSession::between(session, clone);
    using Values = std::map<std::string, std::optional<std::string>>;
    EXPECT_EQ(between.variables, (Values{{"ADDED", std::nullopt},
                                         {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/bus"},
                                         {"DESKTOP_STARTUP_ID", std::nullopt},
                                         {"DISPLAY", ":0"},
                                         {"HOME", "/home/u"},
                                         {"ODD", "two\nlines=and \xFF"},
                                         {"PATH", "/usr/bin:/bin"},
                                         {"WAYLAND_DISPLAY", std::nullopt},
                                         {"XDG_ACTIVATION_TOKEN", std::nullopt}}));
}

TEST(LinkSessionTest, ProgramsInTheCloneMayChangeWhatTheRunnerLeftAlone) {
    Environment inside = session;
    const LinkSession between = LinkSession::between(session, inside);
    inside["HOME"] = "/elsewhere";
    inside["PATH"] = "/elsewhere";
    inside["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
    EXPECT_EQ(between.outside(inside), session);
    EXPECT_THAT(LinkSession::between({}, {}).outside(inside),
                Not(Contains(Key("DBUS_SESSION_BUS_ADDRESS"))));
}

TEST(LinkSessionTest, OutsideIsTheSessionExceptForTheClick) {
    Environment expected = session;
    expected["DISPLAY"] = ":1";
    expected["XDG_ACTIVATION_TOKEN"] = "token";
    expected["DESKTOP_STARTUP_ID"] = "id";
    expected["WAYLAND_DISPLAY"] = "wayland-1";
    EXPECT_EQ(LinkSession::between(session, clone).outside(clone), expected);

    Environment later = clone;
    later["SET_BY_THE_APP"] = "1";
    EXPECT_THAT(LinkSession::between(session, clone).outside(later),
                Contains(Pair("SET_BY_THE_APP", "1")))
        << "the runner did not change it";
}

TEST(LinkSessionTest, IsReadAsItWasWritten) {
    LinkSession written = LinkSession::between(session, clone);
    EXPECT_EQ(LinkSession::parse(written.text()), written);
    written.opener = "/Apps/Browser (2).app/Contents/MacOS/runner";
    EXPECT_EQ(LinkSession::parse(written.text()), written);
    EXPECT_EQ(LinkSession::parse(LinkSession{}.text()), LinkSession{});
}

TEST(LinkSessionTest, OtherTextsAreNotASession) {
    const std::string whole = LinkSession::between(session, clone).text();
    const std::string header = LinkSession{}.text();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        if (whole[length == 0 ? 0 : length - 1] != '\0') {
            EXPECT_EQ(LinkSession::parse(whole.substr(0, length)), std::nullopt) << length;
        }
    }
    for (const std::string& bad :
         {std::string("?NAME=value"), std::string("=NAME"), std::string("==value"),
          std::string("-"), std::string("-NAME=value"), std::string("")}) {
        EXPECT_EQ(LinkSession::parse(header + bad + '\0'), std::nullopt) << bad;
    }
    EXPECT_EQ(LinkSession::parse("quorvel link session 2" + whole.substr(22)), std::nullopt);
}

class LinkSessionTestFile : public ::testing::Test {
protected:
    void writeSession(mode_t mode) const {
        write(file, LinkSession::between(session, clone).text());
        ::chmod(file.c_str(), mode);
    }

    const TemporaryFolder folder;
    const std::string home = folder.path().string();
    const std::string file = linkSessionFile(home);
};

TEST_F(LinkSessionTestFile, IsReadIfItIsTheUsersAlone) {
    EXPECT_EQ(file, home + "/.local/share/quorvel/links/session");
    EXPECT_EQ(readLinkSession(home), std::nullopt);
    writeSession(0600);
    EXPECT_EQ(readLinkSession(home), LinkSession::between(session, clone));
    writeSession(0604);
    EXPECT_EQ(readLinkSession(home), std::nullopt);
    writeSession(0620);
    EXPECT_EQ(readLinkSession(home), std::nullopt);
}

TEST_F(LinkSessionTestFile, IsNotReadThroughALinkOrFromAPipe) {
    writeSession(0600);
    fs::rename(file, folder / "elsewhere");
    fs::create_symlink(folder / "elsewhere", file);
    EXPECT_EQ(readLinkSession(home), std::nullopt);
    fs::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(readLinkSession(home), std::nullopt);
}

TEST_F(LinkSessionTestFile, WithoutOneTheUsualSessionIsAssumed) {
    const fs::path runtime = folder / "run";
    Environment inside = clone;
    inside["HOME"] = home;
    inside["PATH"] = home + "/.local/share/quorvel/links/bin:/usr/bin:" + home + ":/bin";
    inside["XDG_DATA_DIRS"] = home + "/.local/share/quorvel/session-data:/usr/share";
    inside["XDG_CONFIG_DIRS"] = home + "er/xdg:/etc/xdg";
    inside["XDG_RUNTIME_DIR"] = runtime.string();
    for (const char* name :
         {"BROWSER", "CFFIXED_USER_HOME", "GSETTINGS_BACKEND", "TMPDIR", "XDG_CACHE_HOME",
          "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "JAVA_TOOL_OPTIONS"}) {
        inside[name] = home + "/x";
    }
    write(runtime / "bus", "");
    const Environment outside = guessedLinkSession(home, inside).outside(inside);
    EXPECT_EQ(outside,
              (Environment{{"ADDED", ""},
                           {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + (runtime / "bus").string()},
                           {"DESKTOP_STARTUP_ID", "id"},
                           {"DISPLAY", ":1"},
                           {"HOME", UserPaths::listedHome().value_or("none")},
                           {"LANG", "C"},
                           {"PATH", "/usr/bin:/bin"},
                           {"WAYLAND_DISPLAY", "wayland-1"},
                           {"XDG_ACTIVATION_TOKEN", "token"},
                           {"XDG_CONFIG_DIRS", home + "er/xdg:/etc/xdg"},
                           {"XDG_DATA_DIRS", "/usr/share"},
                           {"XDG_RUNTIME_DIR", runtime.string()}}));

    fs::remove(runtime / "bus");
    inside["PATH"] = home;
    const Environment less = guessedLinkSession(home, inside).outside(inside);
    EXPECT_THAT(less, Not(Contains(Key("DBUS_SESSION_BUS_ADDRESS"))));
    EXPECT_THAT(less, Not(Contains(Key("PATH")))) << "an empty one would be the working folder";
}

} // namespace
} // namespace quorvel

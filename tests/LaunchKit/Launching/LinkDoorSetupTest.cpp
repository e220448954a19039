#include "LaunchKit/Launching/LinkDoorSetup.h"

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/InstanceConfig.h"
#include "LinkDoor/LinkSession.h"
#include "Platform/entries/DesktopEntry.h"
#include "Platform/entries/MimeAppsList.h"
#include "Platform/processes/Process.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Key;
using ::testing::Not;
using ::testing::Pair;
namespace fs = std::filesystem;

AppBundle appWith(ResolvedProgram::Engine engine, std::vector<std::string> mimeTypes) {
    AppBundle app;
    app.desktop.emplace();
    app.desktop->program.engine = engine;
    app.desktop->entry.mimeTypes = std::move(mimeTypes);
    return app;
}

const std::vector<std::string> browserTypes{"text/html", "x-scheme-handler/http"};

TEST(LinkDoorSetupTest, ABrowserIsAnEngineOfBrowsersThatOpensAddresses) {
    using Engine = ResolvedProgram::Engine;
    EXPECT_TRUE(isWebBrowser(appWith(Engine::firefox, browserTypes)));
    EXPECT_TRUE(isWebBrowser(appWith(Engine::chromium, browserTypes)));
    EXPECT_FALSE(isWebBrowser(appWith(Engine::firefox, {"x-scheme-handler/mailto"})))
        << "a mail program";
    EXPECT_FALSE(isWebBrowser(appWith(Engine::electron, browserTypes)));
    EXPECT_FALSE(isWebBrowser(appWith(Engine::other, browserTypes)));
    EXPECT_FALSE(isWebBrowser(AppBundle{}));
}

TEST(LinkDoorSetupTest, LinksGoOutsideUnlessSomethingKeepsThemInside) {
    const AppBundle app = appWith(ResolvedProgram::Engine::other, {});
    const AppBundle browser = appWith(ResolvedProgram::Engine::firefox, browserTypes);
    CloneOptions options;
    EXPECT_EQ(linkRouteOf(app, options, false), LinkRoute::outside);
    EXPECT_EQ(linkRouteOf(app, options, true), LinkRoute::inside)
        << "macOS opens them with the user's browser by itself: nothing is to be done";
    EXPECT_EQ(linkRouteOf(browser, options, false), LinkRoute::inside);
    for (const char* outside : {"default", "/Apps/Browser.app", "app.quorvel.instance.browser"}) {
        options.links = outside;
        EXPECT_EQ(linkRouteOf(app, options, false), LinkRoute::outside) << outside;
    }
    options.links = "inside";
    EXPECT_EQ(linkRouteOf(app, options, false), LinkRoute::inside);
    options.links.reset();
    options.registerAsBrowser = true;
    EXPECT_EQ(linkRouteOf(app, options, false), LinkRoute::inside);
}

// A clone's home, the environment of its application, and a program in the place of the door.
class LinkDoorSetupTestHome : public ::testing::Test {
protected:
    LinkDoorSetupTestHome() {
        fs::create_directories(home);
        write(door, "#!/bin/sh\n");
        makeExecutable(door);
        session = {{"HOME", realHome.path().string()},
                   {"PATH", "/usr/bin:/bin"},
                   {"BROWSER", "firefox"},
                   {"XDG_CURRENT_DESKTOP", "Some:GNOME"},
                   {"QUORVEL_LINK_DOOR", door.string()}};
    }

    // Returns the environment of the application.
    Environment setUp(const AppBundle& app = appWith(ResolvedProgram::Engine::other, {})) {
        Environment clone = session;
        clone["HOME"] = home;
        clone["XDG_CONFIG_HOME"] = home + "/.config";
        clone["XDG_DATA_HOME"] = home + "/.local/share";
        for (const auto& [name, value] : options.environment) {
            clone[name] = value;
        }
        setUpLinks(app, home, options, session, clone);
        return clone;
    }
    [[nodiscard]] std::string list(const std::string& name = "mimeapps.list") const {
        return read(home + "/.config/" + name);
    }
    [[nodiscard]] static std::string firstOf(const std::string& text, const std::string& type) {
        const auto ids = defaultHandlersIn(text, type);
        return ids.empty() ? "none" : ids.front();
    }

    const TemporaryHome realHome;
    const TemporaryFolder folder;
    const std::string home = (folder / "clone").string();
    const std::string links = home + "/.local/share/quorvel/links";
    const std::string entryFile = home + "/.local/share/applications/quorvel-links.desktop";
    const fs::path door = folder / "libexec/door";
    Environment session;
    CloneOptions options;
};

TEST_F(LinkDoorSetupTestHome, TheDoorIsTheDefaultForWebAndMailAddresses) {
    const Environment clone = setUp();
    for (const char* type :
         {"x-scheme-handler/http", "x-scheme-handler/https", "x-scheme-handler/mailto"}) {
        EXPECT_EQ(firstOf(list(), type), "quorvel-links.desktop") << type;
    }
    EXPECT_THAT(defaultHandlersIn(list(), "text/html"), ::testing::IsEmpty())
        << "pages in files stay inside";
    const DesktopEntry entry = readDesktopEntry(entryFile);
    EXPECT_EQ(entry.exec, door.string() + " %u");
    EXPECT_TRUE(entry.noDisplay);
    EXPECT_EQ(fs::read_symlink(links + "/bin/xdg-open"), door);
    EXPECT_THAT(clone, Contains(Pair("PATH", links + "/bin:/usr/bin:/bin")));
    EXPECT_THAT(clone, Contains(Pair("BROWSER", door.string())));
    EXPECT_THAT(clone, Contains(Pair("QUORVEL_CLONE_HOME", home)));
}

TEST_F(LinkDoorSetupTestHome, TheSessionIsKeptForTheDoorAlone) {
    Environment clone = setUp();
    struct stat status {};
    ASSERT_EQ(::stat(linkSessionFile(home).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    const auto record = readLinkSession(home);
    ASSERT_TRUE(record);
    Environment outside = session;
    outside.erase("QUORVEL_LINK_DOOR");
    EXPECT_EQ(record->outside(clone), outside);
    EXPECT_EQ(record->opener, "");

    session["PATH"] = "/changed";
    setUp();
    EXPECT_EQ(readLinkSession(home)->variables.at("PATH"), "/changed") << "written at each start";
}

TEST_F(LinkDoorSetupTestHome, OtherLinesAreKept) {
    const std::string mine =
        "[Added Associations]\nimage/png=p.desktop\n"
        "[Default Applications]\nx-scheme-handler/http=mine.desktop\nodd \xFF line\n";
    write(home + "/.config/mimeapps.list", mine);
    write(home + "/.config/gnome-mimeapps.list", mine);
    write(home + "/.config/kde-mimeapps.list", mine);
    setUp();
    for (const char* name : {"mimeapps.list", "gnome-mimeapps.list"}) {
        EXPECT_THAT(defaultHandlersIn(list(name), "x-scheme-handler/http"),
                    ElementsAre("quorvel-links.desktop", "mine.desktop"));
        EXPECT_THAT(list(name), HasSubstr("odd \xFF line\n"));
        EXPECT_THAT(list(name), HasSubstr("[Added Associations]\nimage/png=p.desktop\n"));
    }
    EXPECT_EQ(list("kde-mimeapps.list"), mine) << "of another desktop";
    EXPECT_FALSE(fs::exists(home + "/.config/some-mimeapps.list")) << "it did not exist";
}

TEST_F(LinkDoorSetupTestHome, ASecondStartChangesNothing) {
    setUp();
    const auto before = treeOf(home);
    const auto date = fs::last_write_time(home + "/.config/mimeapps.list");
    setUp();
    EXPECT_EQ(treeOf(home), before);
    EXPECT_EQ(fs::last_write_time(home + "/.config/mimeapps.list"), date);
}

TEST_F(LinkDoorSetupTestHome, ForLinksThatStayInsideNothingIsSetUp) {
    options.links = "inside";
    const Environment clone = setUp();
    EXPECT_TRUE(fs::is_empty(home));
    EXPECT_THAT(clone, Contains(Pair("PATH", "/usr/bin:/bin")));
    EXPECT_THAT(clone, Contains(Pair("BROWSER", "firefox")));
    EXPECT_THAT(clone, Not(Contains(Key("QUORVEL_CLONE_HOME"))));
}

TEST_F(LinkDoorSetupTestHome, WhatAnEarlierStartWroteIsTakenBack) {
    const std::string mine = "[Default Applications]\nx-scheme-handler/http=mine.desktop;\n";
    write(home + "/.config/mimeapps.list", mine);
    setUp();
    ASSERT_NE(list(), mine);
    setUp(appWith(ResolvedProgram::Engine::firefox, browserTypes));
    EXPECT_EQ(list(), mine);
    setUp();
    session["QUORVEL_LINK_DOOR"] = (folder / "missing").string();
    if (!linkDoorProgram(session)) {
        setUp();
        EXPECT_EQ(list(), mine) << "without a door, there is nothing to lead to";
    }
}

TEST_F(LinkDoorSetupTestHome, TheUsersOwnSettingsAreLeftAlone) {
    Environment clone = session;
    setUpLinks(AppBundle{}, realHome.path(), options, session, clone);
    EXPECT_TRUE(fs::is_empty(realHome.path()));
    EXPECT_EQ(clone, session);

    options.environment = {{"XDG_CONFIG_HOME", (realHome / ".config").string()},
                           {"XDG_DATA_HOME", (realHome / "data").string()}};
    setUp();
    EXPECT_TRUE(fs::is_empty(realHome.path())) << "settings that are not in the clone's home";
}

TEST_F(LinkDoorSetupTestHome, AConfiguredBrowserAndPathWin) {
    options.environment = {{"BROWSER", "mine"}, {"PATH", "/mine"}};
    const Environment clone = setUp();
    EXPECT_THAT(clone, Contains(Pair("BROWSER", "mine")));
    EXPECT_THAT(clone, Contains(Pair("PATH", "/mine")));
    EXPECT_EQ(readLinkSession(home)->variables.at("BROWSER"), "firefox");
}

// A second clone that is started by a program in the first.
class LinkDoorSetupTestInAClone : public LinkDoorSetupTestHome {
protected:
    Environment setUpInside(const Environment& firstsOwn) {
        Environment second = firstsOwn;
        second["HOME"] = secondHome;
        second["XDG_CONFIG_HOME"] = secondHome + "/.config";
        second["XDG_DATA_HOME"] = secondHome + "/.local/share";
        for (const auto& [name, value] : secondOptions.environment) {
            second[name] = value;
        }
        fs::create_directories(secondHome);
        setUpLinks(appWith(ResolvedProgram::Engine::other, {}), secondHome, secondOptions,
                   firstsOwn, second);
        return second;
    }

    const std::string secondHome = (folder / "second").string();
    CloneOptions secondOptions{.links = "inside"};
};

TEST_F(LinkDoorSetupTestInAClone, KeepsItsLinksInsideIfThatIsItsOwnSetting) {
    Environment first = setUp();
    first[linkHopsVariable] = "1";
    const Environment second = setUpInside(first);
    EXPECT_THAT(second, Contains(Pair("PATH", "/usr/bin:/bin")));
    EXPECT_THAT(second, Contains(Pair("BROWSER", "firefox"))) << "as in the session of the first";
    EXPECT_THAT(second, Not(Contains(Key(cloneHomeVariable))));
    EXPECT_THAT(second, Not(Contains(Key(linkHopsVariable))));

    first["BROWSER"] = "/opt/older/libexec/quorvel-link-door";
    EXPECT_THAT(setUpInside(first), Contains(Pair("BROWSER", "firefox")))
        << "another installation's door";
    fs::remove(linkSessionFile(home));
    EXPECT_THAT(setUpInside(first), Not(Contains(Key("BROWSER"))));
    first["BROWSER"] = "another";
    EXPECT_THAT(setUpInside(first), Contains(Pair("BROWSER", "another"))) << "not our door";
}

// Desktops that read the cache find the first one's door without asking for a default.
TEST_F(LinkDoorSetupTestInAClone, DoesNotFindTheFirstOnesDoorByItsCacheOfTypes) {
    const std::string applications = home + "/.local/share/applications";
    const Environment first = setUp();
    write(applications + "/mimeinfo.cache",
          "[MIME Cache]\nx-scheme-handler/http=quorvel-links.desktop;\n");
    const auto handlers = [&](Environment clone) {
        // As a clone's shared folders contain the session's entries.
        clone["XDG_DATA_DIRS"] = home + "/.local/share";
        return Process::capture({.executable = "/usr/bin/gio",
                                 .arguments = {"mime", "x-scheme-handler/http"},
                                 .environment = clone},
                                4096);
    };
    EXPECT_THAT(handlers(first), HasSubstr("quorvel-links.desktop"));
    EXPECT_THAT(handlers(setUpInside(first)), Not(HasSubstr("quorvel-links.desktop")));
    secondOptions.links.reset();
    EXPECT_THAT(handlers(setUpInside(first)), HasSubstr("quorvel-links.desktop"))
        << "its own, which is not hidden";
}

TEST_F(LinkDoorSetupTestInAClone, ItsConfiguredVariablesWin) {
    const Environment first = setUp();
    secondOptions.environment = {{"BROWSER", door.string()}, {"PATH", links + "/bin:/mine"}};
    const Environment second = setUpInside(first);
    EXPECT_THAT(second, Contains(Pair("BROWSER", door.string())));
    EXPECT_THAT(second, Contains(Pair("PATH", links + "/bin:/mine")));
}

TEST_F(LinkDoorSetupTestInAClone, ItsOwnDoorLeadsBackToTheFirst) {
    Environment first = setUp();
    first[linkHopsVariable] = "1";
    secondOptions.links.reset();
    const Environment second = setUpInside(first);
    EXPECT_THAT(second, Contains(Pair(cloneHomeVariable, secondHome)));
    EXPECT_THAT(second, Contains(Pair(linkHopsVariable, "1"))) << "a loop must end";
    EXPECT_EQ(readLinkSession(secondHome)->variables.at("PATH"), links + "/bin:/usr/bin:/bin");
}

TEST_F(LinkDoorSetupTestHome, AnotherCloneIsFoundByItsPathOrIdentifier) {
    InstanceConfig other = minimalConfig("Browser");
    other.bundleId = "app.quorvel.instance.browser";
    makeWrapper(realHome / "Applications/Browser.app", other);
    makeWrapper(realHome / "Applications/Alpha.app", "Alpha");
    const std::string runner =
        (realHome / "Applications/Browser.app/Contents/MacOS/runner").string();
    for (const std::string& name :
         {std::string("app.quorvel.instance.browser"), std::string("~/Applications/Browser.app"),
          (realHome / "Applications/Browser.app").string()}) {
        options.links = name;
        setUp();
        EXPECT_EQ(readLinkSession(home)->opener, runner) << name;
    }
    options.links = "app.quorvel.instance.gone";
    setUp();
    EXPECT_EQ(readLinkSession(home)->opener, "app.quorvel.instance.gone")
        << "the door says that it can't be started";
    options.links = "default";
    setUp();
    EXPECT_EQ(readLinkSession(home)->opener, "");
}

TEST_F(LinkDoorSetupTestHome, NothingIsWrittenThroughLinks) {
    const fs::path outside = folder / "outside";
    write(outside / "mimeapps.list", "mine");
    write(outside / "file", "mine");
    const auto before = treeOf(outside);
    fs::create_directories(home + "/.config");
    fs::create_directories(links + "/bin");
    fs::create_directories(fs::path(entryFile).parent_path());
    fs::create_symlink(outside / "mimeapps.list", home + "/.config/mimeapps.list");
    fs::create_symlink(outside / "file", links + "/session");
    fs::create_symlink(outside / "file", links + "/bin/xdg-open");
    fs::create_symlink(outside / "file", entryFile);
    setUp();
    EXPECT_EQ(treeOf(outside), before);
    EXPECT_TRUE(fs::is_symlink(home + "/.config/mimeapps.list"));
    EXPECT_TRUE(readLinkSession(home)) << "it took the link's place";
    EXPECT_EQ(fs::read_symlink(links + "/bin/xdg-open"), door);

    for (const char* name : {".config", ".local"}) {
        fs::remove_all(home + "/" + name);
        fs::create_symlink(outside, home + "/" + name);
    }
    setUp();
    EXPECT_EQ(treeOf(outside), before);
}

TEST_F(LinkDoorSetupTestHome, OddFilesNeitherHangNorAreLost) {
    fs::create_directories(home + "/.config");
    fs::create_directories(links);
    ASSERT_EQ(::mkfifo((home + "/.config/mimeapps.list").c_str(), 0600), 0);
    ASSERT_EQ(::mkfifo((links + "/session").c_str(), 0600), 0);
    write(home + "/.config/gnome-mimeapps.list", std::string(5 << 20, '['));
    fs::create_directories(entryFile);
    EXPECT_THAT(setUp(), Contains(Key("QUORVEL_CLONE_HOME")));
    EXPECT_TRUE(fs::is_fifo(home + "/.config/mimeapps.list"));
    EXPECT_EQ(list("gnome-mimeapps.list").size(), std::size_t{5} << 20U);
    EXPECT_TRUE(readLinkSession(home)) << "nobody can need a pipe of that name";
    EXPECT_TRUE(fs::is_directory(entryFile));

    const std::string binary = std::string("[Default Applications]\n\0\xFF=\xFE\n", 28);
    fs::remove(home + "/.config/mimeapps.list");
    write(home + "/.config/mimeapps.list", binary);
    setUp();
    EXPECT_EQ(firstOf(list(), "x-scheme-handler/http"), "quorvel-links.desktop");
    EXPECT_THAT(list(), HasSubstr(std::string("\0\xFF=\xFE\n", 5)));
}

TEST_F(LinkDoorSetupTestHome, AHomeThatCannotBeWrittenIsNotAnObstacle) {
    fs::permissions(home, fs::perms{0555});
    EXPECT_TRUE(asUnprivilegedUser(folder.path(),
                                   [&] { return setUp()["HOME"] == home && fs::is_empty(home); }));
    fs::permissions(home, fs::perms{0700});
    fs::remove_all(home);
    EXPECT_THAT(setUp(), Contains(Pair("HOME", home))) << "a missing one neither";
}

TEST_F(LinkDoorSetupTestHome, APathThatEnvironmentsCannotHoldIsLeftOut) {
    const fs::path odd = folder / "a door: %s";
    fs::rename(door, odd);
    session["QUORVEL_LINK_DOOR"] = odd.string();
    EXPECT_THAT(setUp(), Contains(Pair("BROWSER", "xdg-open")));
    const DesktopEntry entry = readDesktopEntry(entryFile);
    EXPECT_EQ(ExecLine::parse(entry.exec).program, odd.string());
}

} // namespace
} // namespace quorvel

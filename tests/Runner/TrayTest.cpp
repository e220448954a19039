// The icon in the tray, which the runner has a program show while the clone runs.
#include "tests/Runner/Tray.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Launching/WindowWord.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "Platform/entries/DesktopEntry.h"
#include "Platform/entries/MenuEntry.h"
#include "Platform/processes/ProcessFamily.h"
#include "Platform/windows/X11Windows_linux.h"
#include "tests/Runner/RunnerFixture.h"
#include "tests/support/SessionBus.h"
#include "tests/support/XServer.h"

#include <algorithm>
#include <csignal>
#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

class TrayTest : public RunnerFixture {
protected:
    void SetUp() override {
        if (!SessionBus::isAvailable()) {
            GTEST_SKIP() << "dbus-daemon is not installed";
        }
        bus_.emplace();
    }

    [[nodiscard]] fs::path clone(bool isTemplate = false) const {
        InstanceConfig config = configOf(ShortcutKind::command);
        config.displayName = "Wörk & <b>";
        config.commandPath = helperProgram();
        config.commandArgs = {"wait"};
        config.menuBarIcon = true;
        config.menuBarIconTemplate = isTemplate;
        const fs::path bundle = wrapper(config);
        publishInMenu({bundle, config});
        return bundle;
    }

    // Has a script take the place of the program that shows the icon.
    void replaceProgram(const std::string& script) {
        write(at("stand-in"), "#!/bin/sh\n" + script + "\n");
        makeExecutable(at("stand-in"));
        standIn_.emplace("QUORVEL_STATUS_ITEM", at("stand-in").string());
    }

    ScopedEnvironment program_{"QUORVEL_STATUS_ITEM", QUORVEL_STATUS_ITEM_PROGRAM};
    std::optional<ScopedEnvironment> standIn_{};
    std::optional<SessionBus> bus_{};
};

TEST_F(TrayTest, ShowsTheClonesNameIconAndMenuWhileItRuns) {
    Tray tray;
    const fs::path bundle = clone();
    Process runner = start(bundle);
    const std::string item = tray.item();
    EXPECT_EQ(tray.tooEarly(), 0);
    EXPECT_EQ(tray.property(item, "Title"), "(<'Wörk & <b>'>,)");
    EXPECT_EQ(tray.property(item, "IconName"), "(<'utilities-terminal'>,)");
    EXPECT_EQ(tray.property(item, "Id"), "(<'" + windowWord(cloneIdentity(bundle)) + "'>,)");
    EXPECT_EQ(tray.property(item, "Status"), "(<'Active'>,)");
    EXPECT_EQ(tray.property(item, "Menu"), "(<objectpath '/StatusNotifierItem/Menu'>,)");
    EXPECT_EQ(tray.callMenu(item, "GetLayout", "(0, -1, @as [])"),
              "(1, (0, {'children-display': <'submenu'>}, [<(1, {'label': <'Show'>}, @av [])>, "
              "<(2, {'label': <'Quit'>}, @av [])>]))");
    EXPECT_EQ(tray.callMenu(item, "GetGroupProperties", "([2], @as [])"),
              "([(2, {'label': <'Quit'>})],)");
    runner.terminate();
    EXPECT_EQ(runner.waitUntilExit(), 128 + SIGTERM);
    EXPECT_TRUE(waitUntil([&] { return !tray.has(item); }));
}

TEST_F(TrayTest, WithoutAMenuEntryItHasAPlainNameAndAUsualIcon) {
    Tray tray;
    const fs::path bundle = clone(true);
    const fs::path moved = bundle.parent_path() / "A\u202eB\n\xff.app";
    fs::rename(bundle, moved);
    Process runner = start(moved);
    const std::string item = tray.item();
    EXPECT_EQ(tray.property(item, "Title"), "(<'AB'>,)");
    EXPECT_EQ(tray.property(item, "IconName"), "(<'application-x-executable-symbolic'>,)");
    runner.terminate();
    runner.waitUntilExit();
}

TEST_F(TrayTest, QuitEndsTheClone) {
    Tray tray;
    Process runner = start(clone());
    const std::string item = tray.item();
    ASSERT_NE(item, "");
    EXPECT_EQ(tray.callMenu(item, "AboutToShow", "(0,)"), "(false,)");
    EXPECT_TRUE(tray.callMenu(item, "Event", "(2, 'hovered', <0>, uint32 0)"));
    EXPECT_TRUE(tray.callMenu(item, "Event", "(0, 'clicked', <0>, uint32 0)"));
    EXPECT_TRUE(tray.callMenu(item, "Event", "(-7, 'clicked', <0>, uint32 0)"));
    EXPECT_FALSE(tray.callMenu(item, "GetLayout", "(99, -1, @as [])"));
    EXPECT_FALSE(tray.callMenu(item, "GetProperty", "(99, 'label')"));
    EXPECT_FALSE(waitUntil([&] { return !runner.isRunning(); }, std::chrono::milliseconds(300)));
    EXPECT_TRUE(tray.callMenu(item, "EventGroup", "([(2, 'clicked', <0>, uint32 0)],)"));
    EXPECT_EQ(runner.waitUntilExit(), 128 + SIGTERM);
}

TEST_F(TrayTest, ATrayThatStartsLaterOrAgainShowsIt) {
    Process runner = start(clone(true));
    for (int round = 0; round < 2; ++round) {
        Tray tray;
        const std::string item = tray.item();
        EXPECT_EQ(tray.property(item, "IconName"), "(<'utilities-terminal-symbolic'>,)") << round;
    }
    EXPECT_TRUE(runner.isRunning()) << "no tray is not an error";
    runner.terminate();
    runner.waitUntilExit();
}

TEST_F(TrayTest, ItEndsWithARunnerThatIsKilled) {
    Tray tray;
    Process runner = start(clone());
    const std::string item = tray.item();
    ASSERT_TRUE(tray.has(item));
    const std::vector<ProcessIdentity> below = descendantsOf(runner.identifier());
    runner.sendSignal(SIGKILL);
    runner.waitUntilExit();
    EXPECT_TRUE(waitUntil([&] { return !tray.has(item); }));
    for (const ProcessIdentity& process : below) {
        if (isRunning(process)) {
            ::kill(process.pid, SIGKILL);
        }
    }
}

TEST_F(TrayTest, AnyOtherCloneHasNone) {
    replaceProgram("trap '' TERM; touch " + at("shown").string());
    for (const bool isWanted : {true, false}) {
        fs::remove(at("shown"));
        // The target lasts until the item is there, or would be.
        write(at("target"), "#!/bin/sh\nfor i in $(/usr/bin/seq " +
                                std::string(isWanted ? "500" : "25") + "); do [ -e " +
                                at("shown").string() + " ] && exit; /bin/sleep 0.02; done\n");
        makeExecutable(at("target"));
        InstanceConfig config = configOf(ShortcutKind::command);
        config.commandPath = at("target").string();
        config.menuBarIcon = isWanted;
        config.menuBarIconTemplate = true;
        EXPECT_EQ(run(config), 0);
        EXPECT_EQ(fs::exists(at("shown")), isWanted);
    }
}

TEST_F(TrayTest, ItDoesNotKnowTheTokenOfTheClonesStart) {
    replaceProgram("env > " + at("part").string() + "; mv " + at("part").string() + " " +
                   at("environment").string());
    const ScopedEnvironment token("XDG_ACTIVATION_TOKEN", "stale-1");
    const ScopedEnvironment startup("DESKTOP_STARTUP_ID", "stale-2");
    const ScopedEnvironment other("QUORVEL_OTHER", "kept");
    Process runner = start(clone());
    ASSERT_TRUE(waitUntil([&] { return fs::exists(at("environment")); }));
    EXPECT_THAT(read(at("environment")),
                AllOf(HasSubstr("QUORVEL_OTHER=kept\n"), Not(HasSubstr("stale"))));
    runner.terminate();
    runner.waitUntilExit();
}

TEST_F(TrayTest, WithoutABusTheCloneRunsAllTheSame) {
    const ScopedEnvironment address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    replaceProgram(QUORVEL_STATUS_ITEM_PROGRAM " \"$@\"; echo $? > " + at("status").string());
    Process runner = start(clone());
    EXPECT_TRUE(waitUntil([&] { return read(at("status")) == "0\n"; }))
        << "without a bus there is no tray";
    EXPECT_TRUE(runner.isRunning());
    runner.terminate();
    EXPECT_EQ(runner.waitUntilExit(), 128 + SIGTERM);
}

TEST_F(TrayTest, AClickBringsTheClonesWindowToTheFront) {
    if (const auto missing = XServer::missingPrograms(); !missing.empty()) {
        GTEST_SKIP() << missing.front() << " is not installed";
    }
    const ScopedEnvironment wayland("WAYLAND_DISPLAY", std::nullopt);
    const XServer server;
    const auto screen = X11Windows::connect();
    ASSERT_TRUE(screen);
    Tray tray;
    InstanceConfig config = configOf(ShortcutKind::app);
    const fs::path entry = home_ / "original.desktop";
    write(entry, "[Desktop Entry]\nType=Application\nName=Original\nExec=" QUORVEL_X11_WINDOW " " +
                     at("window").string() + " Original\n");
    config.targetAppPath = entry.string();
    config.menuBarIcon = true;
    Process runner = start(wrapper(config));
    const std::string item = tray.item();
    ASSERT_TRUE(waitUntil([&] { return screen->list().size() == 1; }));
    const BackgroundProgram other(QUORVEL_X11_WINDOW, {at("other").string(), "Other"});
    const auto isInFront = [&](const std::string& className) {
        const auto windows = screen->list();
        return std::any_of(windows.begin(), windows.end(), [&](const X11Window& window) {
            return window.id == screen->active() && window.className == className;
        });
    };
    ASSERT_TRUE(waitUntil([&] { return isInFront("Other"); }));
    EXPECT_TRUE(tray.call(item, "Activate", "(0, 0)"));
    EXPECT_TRUE(waitUntil([&] { return isInFront("Original"); }));
    runner.terminate();
    runner.waitUntilExit();
}

} // namespace
} // namespace quorvel

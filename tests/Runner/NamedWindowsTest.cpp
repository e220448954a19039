// Windows of applications that can't be told what to call them.
#include "LaunchKit/Launching/WindowWord.h"
#include "Platform/processes/ProcessFamily.h"
#include "Platform/windows/X11Windows_linux.h"
#include "tests/Runner/RunnerFixture.h"
#include "tests/support/DesktopApps.h"
#include "tests/support/Waiting.h"
#include "tests/support/XServer.h"

#include <algorithm>
#include <csignal>
#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

class NamedWindowsTest : public RunnerFixture {
protected:
    void SetUp() override {
        if (const auto missing = XServer::missingPrograms(); !missing.empty()) {
            GTEST_SKIP() << missing.front() << " is not installed";
        }
        server_.emplace();
        apps_.emplace(); // which hides the server's programs
        screen_ = X11Windows::connect();
        ASSERT_TRUE(screen_);
    }

    void TearDown() override { screen_.reset(); }

    // A clone of an application that a script starts, and that shows a window of that class.
    [[nodiscard]] fs::path clone() const {
        InstanceConfig config = configOf(ShortcutKind::app);
        setClass("Original");
        config.targetAppPath = apps_->addEntry("original", "original").string();
        return wrapper(config);
    }

    void setClass(const std::string& name) const {
        apps_->addScript("original", "exec " QUORVEL_X11_WINDOW " " + at("window").string() + " " +
                                         name + "\n");
    }

    // Returns what desktops see of the window.
    [[nodiscard]] std::string properties() const {
        return Process::capture(
            {.executable = "/usr/bin/xprop",
             .arguments = {"-id", read(at("window")), "WM_CLASS", "_KDE_NET_WM_DESKTOP_FILE"}},
            4096);
    }

    [[nodiscard]] std::string shownClass() const {
        const auto windows = screen_->list();
        return windows.empty() ? "" : windows.front().instance + " " + windows.front().className;
    }

    ScopedEnvironment wayland_{"WAYLAND_DISPLAY", std::nullopt};
    ScopedEnvironment program_{"QUORVEL_WINDOW_NAMES", QUORVEL_WINDOW_NAMES_PROGRAM};
    std::optional<XServer> server_{};
    std::optional<DesktopApps> apps_{};
    std::optional<X11Windows> screen_{};
};

TEST_F(NamedWindowsTest, AWindowThatNoOptionReachesIsTheClonesOwn) {
    const fs::path bundle = clone();
    const std::string word = windowWord(cloneIdentity(bundle));
    // The original's window stays as it is.
    const BackgroundProgram original(QUORVEL_X11_WINDOW, {at("other").string(), "Original"});
    ASSERT_TRUE(waitUntil([&] { return shownClass() == "Original Original"; }));
    Process runner = start(bundle);
    EXPECT_TRUE(waitUntil([&] { return shownClass() == word + " " + word; })) << shownClass();
    EXPECT_EQ(screen_->list().size(), 2U);
    EXPECT_EQ(screen_->list().back().className, "Original");
    if (fs::exists("/usr/bin/xprop")) {
        EXPECT_THAT(properties(), HasSubstr("_KDE_NET_WM_DESKTOP_FILE(UTF8_STRING) = \"" + word));
    }
    runner.terminate();
    EXPECT_EQ(runner.waitUntilExit(), 128 + SIGTERM) << "nothing else is waited for";
    EXPECT_TRUE(waitUntil([&] { return screen_->list().size() == 1; }));
}

// KDE finds the original's entry by what GTK sets beside the class, unless it is told another.
TEST_F(NamedWindowsTest, AWindowOfTheRightClassIsTheClonesOwnForKdeToo) {
    const fs::path bundle = clone();
    const std::string word = windowWord(cloneIdentity(bundle));
    setClass(word);
    Process runner = start(bundle);
    EXPECT_TRUE(waitUntil([&] {
        const auto windows = screen_->list();
        return windows.size() == 1 && windows.front().desktopFile == word;
    })) << shownClass();
    EXPECT_EQ(shownClass(), word + " " + word);
    runner.terminate();
    runner.waitUntilExit();
}

// GTK 2 draws for X11 only, so its windows are there under Wayland, too.
TEST_F(NamedWindowsTest, AWindowOfAToolkitWithoutWaylandIsNamedUnderWayland) {
    const ScopedEnvironment wayland("WAYLAND_DISPLAY", "wayland-none");
    std::string program = read(QUORVEL_X11_WINDOW);
    const std::string library = "libstdc++.so.6";
    ASSERT_NE(program.find(library), std::string::npos);
    program.replace(program.find(library), library.size(), "libgtk-x11-2.0");
    write(at("lib/original"), program);
    makeExecutable(at("lib/original"));
    const fs::path bundle = clone();
    const std::string word = windowWord(cloneIdentity(bundle));
    apps_->addScript("original", "real=" + at("lib/original").string() +
                                     "\nexec " QUORVEL_X11_WINDOW " " + at("window").string() +
                                     " Original\n");
    Process runner = start(bundle);
    EXPECT_TRUE(waitUntil([&] { return shownClass() == word + " " + word; })) << shownClass();
    runner.terminate();
    runner.waitUntilExit();
}

TEST_F(NamedWindowsTest, WhatNamesWindowsEndsWithItsRunner) {
    const fs::path bundle = clone();
    Process runner = start(bundle);
    ASSERT_TRUE(waitUntil([&] { return shownClass().find("Quorvel-") == 0; }));
    std::vector<ProcessIdentity> below = descendantsOf(runner.identifier());
    EXPECT_EQ(below.size(), 2U) << "the target and what names its windows";
    runner.sendSignal(SIGKILL);
    runner.waitUntilExit();
    EXPECT_TRUE(waitUntil([&] {
        return std::count_if(below.begin(), below.end(), isRunning) == 1;
    })) << "only the target outlives its runner";
    for (const ProcessIdentity& process : below) {
        ::kill(process.pid, SIGKILL);
    }
}

} // namespace
} // namespace quorvel

#include "Platform/desktop/Workspace.h"

#include "tests/support/BusTest.h"
#include "tests/support/Waiting.h"
#include "tests/support/XServer.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class FileManagerTest : public BusTest {
protected:
    std::unique_ptr<Workspace> workspace_ = makeSystemWorkspace();
};

TEST_F(FileManagerTest, AsksTheFileManagerToShowTheItem) {
    const BusProgram manager(QUORVEL_FILE_MANAGER, folder_ / "log");
    workspace_->reveal("/A/Work.app");
    EXPECT_EQ(manager.asked(), "file:///A/Work.app\n");
}

TEST_F(FileManagerTest, AnAddressCanContainAnyName) {
    const BusProgram manager(QUORVEL_FILE_MANAGER, folder_ / "log");
    workspace_->reveal("/A/a b#c?d%e\nf é.app");
    EXPECT_EQ(manager.asked(), "file:///A/a%20b%23c%3Fd%25e%0Af%20%C3%A9.app\n");
}

TEST_F(FileManagerTest, AnAddressCanContainInvalidText) {
    const BusProgram manager(QUORVEL_FILE_MANAGER, folder_ / "log");
    workspace_->reveal("/A/caf\xE9");
    EXPECT_EQ(manager.asked(), "file:///A/caf%E9\n");
}

TEST_F(FileManagerTest, ARelativePathIsShownWhereItIs) {
    const BusProgram manager(QUORVEL_FILE_MANAGER, folder_ / "log");
    workspace_->reveal("Work.app");
    EXPECT_EQ(manager.asked(), "file://" + (fs::current_path() / "Work.app").string() + "\n");
}

TEST_F(FileManagerTest, ARealFileManagerOpensTheFolderOfTheItem) {
    constexpr auto program = "/usr/bin/thunar";
    constexpr auto longestStart = std::chrono::seconds(60); // of a machine that is busy
    if (!fs::exists(program) || !XServer::missingPrograms().empty()) {
        GTEST_SKIP() << "thunar, or what an X server needs, is not installed";
    }
    const TemporaryFolder home;
    const ScopedEnvironment own("HOME", home.path().string());
    const ScopedEnvironment configuration("XDG_CONFIG_HOME", std::nullopt);
    const ScopedEnvironment data("XDG_DATA_HOME", std::nullopt);
    const ScopedEnvironment cache("XDG_CACHE_HOME", std::nullopt);
    const ScopedEnvironment settings("GSETTINGS_BACKEND", "memory");
    const ScopedEnvironment files("GIO_USE_VFS", "local");
    const XServer screen;
    const fs::path folder = home / "Clones of Anna's #1";
    fs::create_directories(folder / "Work.app");
    const BackgroundProgram manager(program, {"--daemon"});
    const auto revealed = [&] {
        try {
            workspace_->reveal(folder / "Work.app");
            return true;
        } catch (const PlatformError&) {
            return false; // it is still starting
        }
    };
    ASSERT_TRUE(waitUntil(revealed, longestStart));
    const auto title = [] {
        return Process::capture({.executable = "/bin/sh",
                                 .arguments = {"-c", "xdotool search --onlyvisible --class thunar "
                                                     "getwindowname %@ 2>/dev/null || :"}},
                                4096);
    };
    EXPECT_TRUE(waitUntil([&] { return title().find("Clones of Anna's #1") != std::string::npos; },
                          longestStart))
        << title();
}

TEST_F(FileManagerTest, IsAnErrorIfNoFileManagerReplies) {
    try {
        workspace_->reveal("/A/Work.app");
        FAIL() << "a file manager answered";
    } catch (const PlatformError& error) {
        EXPECT_TRUE(
            error.description().starts_with("“Work.app” couldn’t be shown in the file manager"))
            << error.description();
    }
}

// Run by the test below, in a process that has no session bus.
TEST(FileManagerTestAlone, DISABLED_NothingIsShownWithoutABus) {
    EXPECT_THROW(makeSystemWorkspace()->reveal("/A/Work.app"), PlatformError);
}

TEST(FileManagerTestAlone, StartsNoBus) {
    const TemporaryFolder folder;
    const fs::path launcher = folder / "dbus-launch"; // by which libdbus starts one
    write(launcher, "#!/bin/sh\n: >'" + (folder / "launched").string() + "'\nexit 1\n");
    fs::permissions(launcher, fs::perms::owner_all);
    Process::Options options;
    options.executable = fs::read_symlink("/proc/self/exe");
    options.arguments = {"--gtest_also_run_disabled_tests",
                         "--gtest_filter=FileManagerTestAlone.DISABLED_*"};
    options.environment = currentEnvironment();
    options.environment->erase("DBUS_SESSION_BUS_ADDRESS");
    (*options.environment)["XDG_RUNTIME_DIR"] = folder.path().string();
    (*options.environment)["DISPLAY"] = ":4711";
    (*options.environment)["PATH"] = folder.path().string();
    options.standardOutput = Process::Discard{};
    EXPECT_EQ(Process::run(options).waitUntilExit(), 0);
    EXPECT_FALSE(fs::exists(folder / "launched"));
}

} // namespace
} // namespace quorvel

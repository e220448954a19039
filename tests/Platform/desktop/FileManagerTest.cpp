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

} // namespace
} // namespace quorvel

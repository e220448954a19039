#include "Platform/desktop/Workspace.h"

#include "tests/support/BusTest.h"

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

#include "Platform/desktop/Workspace.h"
#include "Platform/processes/Process.h"

#include "tests/support/SessionBus.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class FileManager {
public:
    explicit FileManager(fs::path log) : log_(std::move(log)) {
        Process::Options options;
        options.executable = QUORVEL_FILE_MANAGER;
        options.arguments = {log_.string()};
        process_.emplace(Process::run(options));
        if (!waitUntil([&] { return read(log_) == "ready\n"; })) {
            throw std::runtime_error("the file manager does not come up");
        }
    }
    FileManager(const FileManager&) = delete;
    FileManager& operator=(const FileManager&) = delete;
    ~FileManager() {
        process_->terminate();
        process_->waitUntilExit();
    }

    [[nodiscard]] std::string shown() const { return read(log_).substr(6); }

private:
    fs::path log_;
    std::optional<Process> process_;
};

class FileManagerTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        if (SessionBus::isAvailable()) {
            bus = std::make_unique<SessionBus>();
        }
    }
    static void TearDownTestSuite() { bus.reset(); }

    void SetUp() override {
        if (!bus) {
            GTEST_SKIP() << "dbus-daemon is not installed";
        }
    }

    static inline std::unique_ptr<SessionBus> bus;
    TemporaryFolder folder_;
    std::unique_ptr<Workspace> workspace_ = makeSystemWorkspace();
};

TEST_F(FileManagerTest, AsksTheFileManagerToShowTheItem) {
    const FileManager manager(folder_ / "log");
    workspace_->reveal("/A/Work.app");
    EXPECT_EQ(manager.shown(), "file:///A/Work.app\n");
}

TEST_F(FileManagerTest, AnAddressCanContainAnyName) {
    const FileManager manager(folder_ / "log");
    workspace_->reveal("/A/a b#c?d%e\nf é.app");
    EXPECT_EQ(manager.shown(), "file:///A/a%20b%23c%3Fd%25e%0Af%20%C3%A9.app\n");
}

TEST_F(FileManagerTest, AnAddressCanContainInvalidText) {
    const FileManager manager(folder_ / "log");
    workspace_->reveal("/A/caf\xE9");
    EXPECT_EQ(manager.shown(), "file:///A/caf%E9\n");
}

TEST_F(FileManagerTest, ARelativePathIsShownWhereItIs) {
    const FileManager manager(folder_ / "log");
    workspace_->reveal("Work.app");
    EXPECT_EQ(manager.shown(), "file://" + (fs::current_path() / "Work.app").string() + "\n");
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

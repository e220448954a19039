#include "Platform/files/FileLock.h"

#include "Platform/files/PlatformError.h"
#include "tests/support/TemporaryHome.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

TEST(FileLockTest, IsHeldOnlyOnce) {
    const TemporaryFolder folder;
    auto first = FileLock::tryTake(folder / "lock");
    ASSERT_TRUE(first);
    EXPECT_FALSE(FileLock::tryTake(folder / "lock"));
    EXPECT_TRUE(FileLock::tryTake(folder / "other"));
    first.reset();
    EXPECT_TRUE(FileLock::tryTake(folder / "lock"));
}

TEST(FileLockTest, LeavesAnExistingFilesContentsUnchanged) {
    const TemporaryFolder folder;
    write(folder / "lock", "bytes");
    EXPECT_TRUE(FileLock::tryTake(folder / "lock"));
    EXPECT_EQ(read(folder / "lock"), "bytes");
}

TEST(FileLockTest, OnARemovedFileDoesNotCount) {
    const TemporaryFolder folder;
    std::atomic<int> holders = 0;
    std::atomic<int> most = 0;
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            for (int turn = 0; turn < 5000; ++turn) {
                if (const auto lock = FileLock::tryTake(folder / "lock")) {
                    most = std::max<int>(most, ++holders);
                    std::this_thread::yield();
                    --holders;
                    fs::remove(folder / "lock");
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(most, 1);
}

TEST(FileLockTest, OnAFolderIsWaitedForAWhile) {
    const TemporaryFolder folder;
    std::optional<FileLock> held = FileLock::tryTakeFolder(folder.path());
    ASSERT_TRUE(held);
    EXPECT_FALSE(FileLock::takeFolder(folder.path(), std::chrono::milliseconds(20)));
    std::atomic<bool> released = false;
    std::thread waiting([&] {
        EXPECT_TRUE(FileLock::takeFolder(folder.path(), std::chrono::seconds(60)));
        EXPECT_TRUE(released);
    });
    released = true;
    held.reset();
    waiting.join();
    EXPECT_THROW((void)FileLock::takeFolder(folder / "none", std::chrono::seconds(60)),
                 PlatformError);
}

TEST(FileLockTest, IsAnErrorIfTheFileCantBeCreated) {
    const TemporaryFolder folder;
    EXPECT_THROW((void)FileLock::tryTake(folder / "no/such/folder"), PlatformError);
    EXPECT_THROW((void)FileLock::tryTake(folder.path()), PlatformError);
    EXPECT_THROW((void)FileLock::tryTake((folder / "lock").native() + std::string(1, '\0') + "x"),
                 PlatformError);
}

} // namespace
} // namespace quorvel

#include "tests/Platform/watching/Recording.h"
#include "tests/support/InotifyLimit.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"
#include "tests/support/Waiting.h"

#include <atomic>
#include <future>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

// Keeps a stream's queue from being read, so that the system's own overflows.
class HeldStream {
public:
    explicit HeldStream(const fs::path& folder) {
        FSEventStream::Options options;
        options.paths = {folder};
        stream_ = FSEventStream::start(options, [this](const FSEventBatch& batch) {
            holding_ = true;
            isHeld_.wait();
            list_.add(batch);
        });
    }
    ~HeldStream() { letGo(); }

    /// Waits until an event has arrived; all others queue up after it.
    [[nodiscard]] bool holds() {
        return waitUntil([&] { return holding_.load(); });
    }

    void letGo() {
        if (!released_) {
            released_ = true;
            hold_.set_value();
        }
    }

    const ChangeList& stop() {
        letGo();
        stream_->stop();
        return list_;
    }

private:
    bool released_ = false;
    std::atomic<bool> holding_ = false;
    ChangeList list_{};
    std::promise<void> hold_{};
    std::shared_future<void> isHeld_{hold_.get_future()};
    std::unique_ptr<FSEventStream> stream_{};
};

TEST(FSEventLimitsTest, QueueOverflowIsNoticedAndAnsweredByASearch) {
    const int limit = std::stoi(read("/proc/sys/fs/inotify/max_queued_events"));
    if (limit > 100'000) {
        GTEST_SKIP() << "the system's queue is too long to be filled";
    }
    const TemporaryFolder folder;
    write(folder / "old/changed", "text");
    write(folder / "old/untouched", "text");
    fs::create_directory(folder / "gone");
    fs::create_directory(folder / "many");
    const TemporaryFolder elsewhere;
    write(elsewhere / "moved/in/file", "text");
    HeldStream stream(folder.path());
    write(folder / "first", "holds the stream's thread");
    ASSERT_TRUE(stream.holds());
    for (int number = 0; number <= limit; ++number) {
        write(folder / ("many/" + std::to_string(number)), "x");
    }
    write(folder / "old/changed", "more");
    write(folder / "late/sub/file", "text");
    fs::rename(elsewhere / "moved", folder / "moved");
    fs::rename(folder / "gone", elsewhere / "gone");
    const ChangeList& list = stream.stop();
    const auto paths = list.paths();
    EXPECT_FALSE(list.isComplete());
    for (int number = 0; number <= limit; ++number) {
        EXPECT_TRUE(paths.contains(folder / ("many/" + std::to_string(number)))) << number;
    }
    EXPECT_TRUE(paths.contains(folder / "old/changed"));
    EXPECT_TRUE(paths.contains(folder / "late/sub/file"));
    EXPECT_TRUE(paths.contains(folder / "moved/in/file"));
    EXPECT_FALSE(paths.contains(folder / "old/untouched"));
}

TEST(FSEventLimitsTest, ARootThatVanishesStillReportsWhatHappenedInIt) {
    const TemporaryFolder folder;
    const fs::path root = folder / "root";
    fs::create_directory(root);
    HeldStream stream(root);
    write(root / "first", "holds the stream's thread");
    ASSERT_TRUE(stream.holds());
    write(root / "second", "text");
    fs::remove_all(root);
    EXPECT_TRUE(stream.stop().paths().contains(root / "second"));
}

TEST(FSEventLimitsTest, WatchLimitIsNoticedAndAnsweredByASearch) {
    if (!holdsInChild([] { return limitInotify(InotifyLimit::watches, 20); })) {
        GTEST_SKIP() << "the system gives no limits of one's own";
    }
    const TemporaryFolder folder;
    for (int number = 0; number < 60; ++number) {
        write(folder / (std::to_string(number) + "/sub/old"), "text");
    }
    EXPECT_TRUE(holdsInChild([&] {
        if (!limitInotify(InotifyLimit::watches, 20)) {
            return false;
        }
        Recording recording(folder.path());
        for (int number = 0; number < 60; ++number) {
            write(folder / (std::to_string(number) + "/sub/new"), "text");
        }
        recording.stop();
        const auto paths = recording.paths();
        for (int number = 0; number < 60; ++number) {
            const std::string sub = std::to_string(number) + "/sub/";
            if (!paths.contains(folder / (sub + "new")) || paths.contains(folder / (sub + "old"))) {
                return false;
            }
        }
        return !recording.isComplete();
    }));
}

TEST(FSEventLimitsTest, WithoutAFreeQueueThereIsNoStream) {
    if (!holdsInChild([] { return limitInotify(InotifyLimit::instances, 1); })) {
        GTEST_SKIP() << "the system gives no limits of one's own";
    }
    const TemporaryFolder folder;
    EXPECT_TRUE(holdsInChild([&] {
        FSEventStream::Options options;
        options.paths = {folder.path()};
        return limitInotify(InotifyLimit::instances, 1) &&
               FSEventStream::start(options, [](const FSEventBatch& /*batch*/) {}) == nullptr;
    }));
}

TEST(FSEventLimitsTest, UnreadableFolderIsReported) {
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms{0755});
    fs::create_directory(folder / "closed");
    fs::permissions(folder / "closed", fs::perms::none);
    EXPECT_TRUE(asUnprivilegedUser(folder.path(), [&] {
        Recording recording(folder.path());
        recording.stop();
        return !recording.isComplete();
    }));
}

} // namespace
} // namespace quorvel

#include "tests/ProbeKit/Recording.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <atomic>
#include <fcntl.h>
#include <future>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

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
            probe_.receive(batch);
        });
    }
    ~HeldStream() { letGo(); }

    /// Waits until an event has come, behind which all others queue up.
    [[nodiscard]] bool holds() {
        return waitFor([&] { return holding_.load(); });
    }

    void letGo() {
        if (!released_) {
            released_ = true;
            hold_.set_value();
        }
    }

    FSEventProbe& stop() {
        letGo();
        stream_->stop();
        return probe_;
    }

private:
    bool released_ = false;
    std::atomic<bool> holding_ = false;
    FSEventProbe probe_{{}};
    std::promise<void> hold_{};
    std::shared_future<void> isHeld_{hold_.get_future()};
    std::unique_ptr<FSEventStream> stream_{};
};

std::set<std::string> pathsOf(const std::vector<WriteEvent>& events) {
    std::set<std::string> paths;
    for (const WriteEvent& event : events) {
        paths.insert(event.path);
    }
    return paths;
}

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
    FSEventProbe& probe = stream.stop();
    const auto paths = pathsOf(probe.stopAndDrain());
    EXPECT_FALSE(probe.isComplete());
    for (int number = 0; number <= limit; ++number) {
        EXPECT_TRUE(paths.contains(folder / ("many/" + std::to_string(number)))) << number;
    }
    EXPECT_TRUE(paths.contains(folder / "old/changed"));
    EXPECT_TRUE(paths.contains(folder / "late/sub/file"));
    EXPECT_TRUE(paths.contains(folder / "moved/in/file"));
    EXPECT_FALSE(paths.contains(folder / "old/untouched"));
}

TEST(FSEventLimitsTest, WatchedRootTellsWhatHappenedInItBeforeItWent) {
    const TemporaryFolder folder;
    const fs::path root = folder / "root";
    fs::create_directory(root);
    HeldStream stream(root);
    write(root / "first", "holds the stream's thread");
    ASSERT_TRUE(stream.holds());
    write(root / "second", "text");
    fs::remove_all(root);
    EXPECT_TRUE(pathsOf(stream.stop().stopAndDrain()).contains(root / "second"));
}

// Runs `body` in a process of its own; gives its answer.
bool holdsInChild(const std::function<bool()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(body() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool writeSetting(const char* file, const std::string& text) {
    const int descriptor = ::open(file, O_WRONLY | O_CLOEXEC);
    const bool written = descriptor >= 0 && ::write(descriptor, text.data(), text.size()) ==
                                                static_cast<ssize_t>(text.size());
    ::close(descriptor);
    return written;
}

// A user of our own, with a limit of our own.
bool limitInotify(const char* setting, int count) {
    const std::string map = "0 " + std::to_string(::geteuid()) + " 1";
    return ::unshare(CLONE_NEWUSER) == 0 && writeSetting("/proc/self/uid_map", map) &&
           writeSetting(setting, std::to_string(count));
}

constexpr const char* watchLimit = "/proc/sys/user/max_inotify_watches";
constexpr const char* instanceLimit = "/proc/sys/user/max_inotify_instances";

TEST(FSEventLimitsTest, WatchLimitIsNoticedAndAnsweredByASearch) {
    if (!holdsInChild([] { return limitInotify(watchLimit, 20); })) {
        GTEST_SKIP() << "the system gives no limits of one's own";
    }
    const TemporaryFolder folder;
    for (int number = 0; number < 60; ++number) {
        write(folder / (std::to_string(number) + "/sub/old"), "text");
    }
    EXPECT_TRUE(holdsInChild([&] {
        if (!limitInotify(watchLimit, 20)) {
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

TEST(FSEventLimitsTest, WatchLimitOfWholeStreamsLeavesAnEmptyRecordThatSaysSo) {
    if (!holdsInChild([] { return limitInotify(instanceLimit, 1); })) {
        GTEST_SKIP() << "the system gives no limits of one's own";
    }
    const TemporaryFolder folder;
    EXPECT_TRUE(holdsInChild([&] {
        if (!limitInotify(instanceLimit, 1)) {
            return false;
        }
        Recording recording(folder.path());
        write(folder / "file", "text");
        return recording.stop().empty() && !recording.isComplete();
    }));
}

// Gives up root's right to read everything, when it has it.
class OrdinaryUser {
public:
    OrdinaryUser() : wasRoot_(::geteuid() == 0) {
        if (wasRoot_ && ::seteuid(65534) != 0) {
            throw std::runtime_error("could not become another user");
        }
    }
    ~OrdinaryUser() {
        if (wasRoot_) {
            (void)!::seteuid(0);
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    bool wasRoot_;
};

TEST(FSEventLimitsTest, UnreadableFolderIsTold) {
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms{0755});
    fs::create_directory(folder / "closed");
    fs::permissions(folder / "closed", fs::perms::none);
    const OrdinaryUser user;
    Recording recording(folder.path());
    recording.stop();
    EXPECT_FALSE(recording.isComplete());
}

} // namespace
} // namespace quorvel

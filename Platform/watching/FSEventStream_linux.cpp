#include "Platform/watching/FSEventStream.h"

#include "Base/PathText.h"
#include "Platform/files/FileHandle.h"
#include "Platform/watching/EventCoalescer.h"
#include "Platform/watching/InotifyQueue_linux.h"
#include "Platform/watching/RootSentinels_linux.h"
#include "Platform/watching/WatchTree_linux.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>

namespace quorvel {
namespace {

using Clock = EventCoalescer::Clock;

constexpr std::size_t longestThreadName = 15;

// Milliseconds. Without a pause, every event would wake this thread, which would slow the writing
// process down. In this time only a small part of the queue is filled.
constexpr int pauseBetweenReads = 1;

std::vector<std::string> trimmed(std::vector<std::string> paths) {
    for (std::string& path : paths) {
        path = withoutTrailingSlashes(std::move(path));
    }
    return paths;
}

class InotifyStream final : public FSEventStream {
public:
    InotifyStream(Options options, Handler handler)
        : label_(options.queueLabel.substr(0, longestThreadName)),
          handler_(std::move(handler)),
          wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
          coalescer_(options.latency),
          sentinels_(trimmed(options.paths)),
          tree_(
              trimmed(std::move(options.paths)),
              [this](std::string path, std::uint32_t flags) {
                  coalescer_.add(std::move(path), flags);
              },
              std::move(options.isOfInterest)) {}

    ~InotifyStream() override { stop(); }

    [[nodiscard]] bool works() const {
        return wake_.descriptor() >= 0 && sentinels_.works() && tree_.works();
    }

    void startThread() { thread_ = std::thread(&InotifyStream::run, this); }

    void stop() override {
        if (thread_.joinable()) {
            ::eventfd_write(wake_.descriptor(), 1);
            thread_.join();
        }
    }

private:
    void run() {
        ::pthread_setname_np(::pthread_self(), label_.c_str());
        while (!waitForWork()) {
            settleRoots();
            busy_ = tree_.readQueue() > 0;
            tree_.tidy(false);
            deliverWhenDue();
        }
        drain();
    }

    // Returns true if the stream is to be stopped.
    bool waitForWork() {
        std::array<pollfd, 3> files{{{wake_.descriptor(), POLLIN, 0},
                                     {sentinels_.descriptor(), POLLIN, 0},
                                     {tree_.descriptor(), POLLIN, 0}}};
        if (busy_) {
            ::poll(files.data(), 1, pauseBetweenReads);
        } else {
            ::poll(files.data(), files.size(), timeout());
        }
        return files[0].revents != 0;
    }

    [[nodiscard]] int timeout() const {
        std::optional<Clock::time_point> next = coalescer_.due();
        if (const auto tidy = tree_.tidyDue()) {
            next = std::min(next.value_or(*tidy), *tidy);
        }
        if (!next) {
            return -1;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*next - Clock::now());
        return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
    }

    void settleRoots() {
        const auto changed = sentinels_.takeChanged();
        if (!changed.empty()) {
            // Events in a root that is gone are still queued, and must be read before it is
            // replaced.
            readQueued();
        }
        for (const std::size_t root : changed) {
            tree_.settle(root, true);
        }
    }

    void readQueued() {
        drainInotifyQueue(tree_.descriptor(), [this] { return tree_.readQueue(); });
    }

    // A change is queued before its system call returns, so the queue now contains everything that
    // happened before the stop. Later events are not waited for.
    void drain() {
        settleRoots();
        readQueued();
        tree_.tidy(true);
        deliver();
    }

    void deliverWhenDue() {
        const auto due = coalescer_.due();
        if (due && *due <= Clock::now()) {
            deliver();
        }
    }

    void deliver() {
        if (coalescer_.due()) {
            handler_(coalescer_.take(Clock::now()));
        }
    }

    std::string label_;
    Handler handler_;
    FileHandle wake_;
    EventCoalescer coalescer_;
    RootSentinels sentinels_;
    WatchTree tree_;
    bool busy_ = false; ///< the last read returned events
    std::thread thread_{};
};

} // namespace

std::unique_ptr<FSEventStream> FSEventStream::start(Options options, Handler handler) {
    auto stream = std::make_unique<InotifyStream>(std::move(options), std::move(handler));
    if (!stream->works()) {
        return nullptr;
    }
    try {
        stream->startThread();
    } catch (const std::system_error&) {
        return nullptr;
    }
    return stream;
}

} // namespace quorvel

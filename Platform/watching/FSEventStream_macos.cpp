#include "Platform/watching/FSEventStream.h"

#include "Platform/watching/FSEventTranslation.h"

#include <CoreServices/CoreServices.h>
#include <dispatch/dispatch.h>

#include <utility>

namespace quorvel {
namespace {

constexpr FSEventStreamCreateFlags creationFlags = kFSEventStreamCreateFlagUseCFTypes |
                                                   kFSEventStreamCreateFlagNoDefer |
                                                   kFSEventStreamCreateFlagFileEvents;

CF_RETURNS_RETAINED CFArrayRef newArray(const std::vector<std::string>& paths) {
    CFMutableArrayRef array = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    for (const std::string& path : paths) {
        CFStringRef text =
            CFStringCreateWithFileSystemRepresentation(kCFAllocatorDefault, path.c_str());
        if (text != nullptr) {
            CFArrayAppendValue(array, text);
            CFRelease(text);
        }
    }
    return array;
}

std::string pathOf(CFStringRef text) {
    const CFIndex size = CFStringGetMaximumSizeOfFileSystemRepresentation(text);
    std::string path(static_cast<std::size_t>(size), '\0');
    if (!CFStringGetFileSystemRepresentation(text, path.data(), size)) {
        return {};
    }
    path.resize(path.find('\0'));
    return path;
}

class SystemStream final : public FSEventStream {
public:
    SystemStream(const Options& options, Handler handler)
        : translation_(options.paths),
          handler_(std::move(handler)),
          queue_(dispatch_queue_create(options.queueLabel.c_str(), DISPATCH_QUEUE_SERIAL)) {
        CFArrayRef paths = newArray(translation_.realRoots());
        FSEventStreamContext context{0, this, nullptr, nullptr, nullptr};
        stream_ = FSEventStreamCreate(kCFAllocatorDefault, &SystemStream::receive, &context, paths,
                                      kFSEventStreamEventIdSinceNow,
                                      std::chrono::duration<double>(options.latency).count(),
                                      creationFlags);
        CFRelease(paths);
        if (stream_ != nullptr) {
            FSEventStreamSetDispatchQueue(stream_, queue_);
            if (!FSEventStreamStart(stream_)) {
                release();
            }
        }
    }

    ~SystemStream() override {
        stop();
        dispatch_release(queue_);
    }

    [[nodiscard]] bool works() const { return stream_ != nullptr; }

    void stop() override {
        if (stream_ != nullptr) {
            FSEventStreamFlushSync(stream_);
            FSEventStreamStop(stream_);
            release();
        }
    }

private:
    void release() {
        FSEventStreamInvalidate(stream_);
        // The handler may be running; an empty task on its queue waits for it.
        dispatch_sync_f(queue_, nullptr, [](void*) {});
        FSEventStreamRelease(stream_);
        stream_ = nullptr;
    }

    static void receive(ConstFSEventStreamRef /*stream*/, void* info, std::size_t count,
                        void* eventPaths, const FSEventStreamEventFlags* flags,
                        const FSEventStreamEventId* /*identifiers*/) {
        auto* texts = static_cast<CFArrayRef>(eventPaths);
        std::vector<std::string> paths;
        for (CFIndex index = 0; index < CFArrayGetCount(texts); ++index) {
            paths.push_back(pathOf(static_cast<CFStringRef>(CFArrayGetValueAtIndex(texts, index))));
        }
        const auto* self = static_cast<const SystemStream*>(info);
        FSEventBatch batch = self->translation_.translated(paths, {flags, count});
        if (!batch.paths.empty()) {
            self->handler_(std::move(batch));
        }
    }

    FSEventTranslation translation_;
    Handler handler_;
    dispatch_queue_t queue_;
    FSEventStreamRef stream_ = nullptr;
};

} // namespace

std::unique_ptr<FSEventStream> FSEventStream::start(Options options, Handler handler) {
    auto stream = std::make_unique<SystemStream>(options, std::move(handler));
    return stream->works() ? std::move(stream) : nullptr;
}

} // namespace quorvel

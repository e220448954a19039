#include "Platform/FSEventStream.h"

#include <CoreServices/CoreServices.h>
#include <dispatch/dispatch.h>

namespace quorvel {
namespace {

constexpr FSEventStreamCreateFlags creationFlags = kFSEventStreamCreateFlagUseCFTypes |
                                                   kFSEventStreamCreateFlagNoDefer |
                                                   kFSEventStreamCreateFlagFileEvents;

constexpr FSEventStreamEventFlags lossFlags = kFSEventStreamEventFlagMustScanSubDirs |
                                              kFSEventStreamEventFlagUserDropped |
                                              kFSEventStreamEventFlagKernelDropped;

CFStringRef newString(const std::string& text) {
    return CFStringCreateWithFileSystemRepresentation(kCFAllocatorDefault, text.c_str());
}

std::string pathOf(CFStringRef text) {
    std::string path(
        static_cast<std::size_t>(CFStringGetMaximumSizeOfFileSystemRepresentation(text)), '\0');
    if (!CFStringGetFileSystemRepresentation(text, path.data(),
                                             static_cast<CFIndex>(path.size()))) {
        return {};
    }
    path.resize(path.find('\0'));
    return path;
}

// The flags that callers know have the platform's own values; every kind of loss counts as one.
std::uint32_t portableFlags(FSEventStreamEventFlags flags) {
    constexpr std::uint32_t known = FSEventFlag::itemCreated | FSEventFlag::itemRemoved |
                                    FSEventFlag::itemRenamed | FSEventFlag::itemModified |
                                    FSEventFlag::itemIsDir;
    return (flags & known) | ((flags & lossFlags) != 0 ? FSEventFlag::mustScanSubDirs : 0U);
}

class SystemStream final : public FSEventStream {
  public:
    SystemStream(const Options& options, Handler handler)
        : handler_(std::move(handler)),
          queue_(dispatch_queue_create(options.queueLabel.c_str(), DISPATCH_QUEUE_SERIAL)) {
        CFMutableArrayRef paths =
            CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
        for (const std::string& path : options.paths) {
            CFStringRef text = newString(path);
            CFArrayAppendValue(paths, text);
            CFRelease(text);
        }
        FSEventStreamContext context{0, this, nullptr, nullptr, nullptr};
        stream_ = FSEventStreamCreate(kCFAllocatorDefault, &SystemStream::receive, &context, paths,
                                      kFSEventStreamEventIdSinceNow,
                                      std::chrono::duration<double>(options.latency).count(),
                                      creationFlags);
        CFRelease(paths);
        if (stream_ != nullptr) {
            FSEventStreamSetDispatchQueue(stream_, queue_);
            FSEventStreamStart(stream_);
        }
    }

    ~SystemStream() override { stop(); }

    [[nodiscard]] bool works() const { return stream_ != nullptr; }

    void stop() override {
        if (stream_ != nullptr) {
            FSEventStreamFlushSync(stream_);
            FSEventStreamStop(stream_);
            FSEventStreamInvalidate(stream_);
            FSEventStreamRelease(stream_);
            stream_ = nullptr;
        }
    }

  private:
    static void receive(ConstFSEventStreamRef /*stream*/, void* info, std::size_t count,
                        void* paths, const FSEventStreamEventFlags* flags,
                        const FSEventStreamEventId* /*identifiers*/) {
        FSEventBatch batch;
        auto* texts = static_cast<CFArrayRef>(paths);
        for (CFIndex index = 0; index < CFArrayGetCount(texts); ++index) {
            batch.paths.push_back(
                pathOf(static_cast<CFStringRef>(CFArrayGetValueAtIndex(texts, index))));
        }
        for (std::size_t index = 0; index < count; ++index) {
            batch.flags.push_back(portableFlags(flags[index]));
        }
        static_cast<SystemStream*>(info)->handler_(std::move(batch));
    }

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

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quorvel {

/// What happened to an item, as bits. Several may be set: changes of one item within the latency
/// are reported as one event.
namespace FSEventFlag {
/// Events were lost, or a folder below could not be watched: the events of the path's tree may be
/// incomplete.
inline constexpr std::uint32_t mustScanSubDirs = 0x00000001;
inline constexpr std::uint32_t itemCreated = 0x00000100;
inline constexpr std::uint32_t itemRemoved = 0x00000200;
inline constexpr std::uint32_t itemRenamed = 0x00000800; ///< set for the old and for the new name
inline constexpr std::uint32_t itemModified = 0x00001000;
inline constexpr std::uint32_t itemIsDir = 0x00020000;
} // namespace FSEventFlag

/// Events in the order in which they happened. `flags` has one element per path.
struct FSEventBatch {
    std::vector<std::string> paths{};
    std::vector<std::uint32_t> flags{};
};

/// Reports every change below some folders, per file, on a thread of its own.
///
/// Paths begin with a watched folder as it was given. Symbolic links below it are not followed. A
/// folder that is created or moved in is reported with everything in it. A watched folder may be
/// missing, be removed and be replaced. A folder that is in two watched ones is reported under the
/// first. A write through a memory mapping is reported when the file is closed.
class FSEventStream {
public:
    using Handler = std::function<void(FSEventBatch)>;

    struct Options {
        std::vector<std::string> paths{}; ///< absolute, of folders
        /// Returns whether what happens inside a folder below `paths` is of interest. Events in
        /// other folders may be left out, which saves time if there are many. Empty: all are.
        /// Called on any thread.
        std::function<bool(const std::string& folder)> isOfInterest{};
        /// The first event after a quiet period is delivered immediately; later events are batched
        /// for this long.
        std::chrono::milliseconds latency{100};
        /// The name of the serial queue. Thread names are truncated on some systems.
        std::string queueLabel{};
    };

    /// Starts a stream that reports all changes after this call. `handler` is called on the
    /// stream's own thread, one call at a time. Returns null if the system can't create a stream.
    [[nodiscard]] static std::unique_ptr<FSEventStream> start(Options options, Handler handler);

    FSEventStream() = default;
    FSEventStream(const FSEventStream&) = delete;
    FSEventStream& operator=(const FSEventStream&) = delete;
    /// Calls `stop`.
    virtual ~FSEventStream() = default;

    /// Delivers every event that happened before this call and stops. The handler is not called
    /// after the return. Must not be called by the handler. A second call does nothing.
    virtual void stop() = 0;
};

} // namespace quorvel

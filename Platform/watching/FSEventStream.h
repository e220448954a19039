#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quorvel {

/// What happened to an item, as bits. Several may stand together: changes of one item that follow
/// each other within the latency come as one event.
namespace FSEventFlag {
/// Events were lost, or a folder below could not be watched: what is known of the path's tree may
/// lack something.
inline constexpr std::uint32_t mustScanSubDirs = 0x00000001;
inline constexpr std::uint32_t itemCreated = 0x00000100;
inline constexpr std::uint32_t itemRemoved = 0x00000200;
inline constexpr std::uint32_t itemRenamed = 0x00000800; ///< the old and the new name have one each
inline constexpr std::uint32_t itemModified = 0x00001000;
inline constexpr std::uint32_t itemIsDir = 0x00020000;
} // namespace FSEventFlag

/// Events in the order in which they happened; `flags` has one entry for each path.
struct FSEventBatch {
    std::vector<std::string> paths{};
    std::vector<std::uint32_t> flags{};
};

/// Reports every change below some folders, file by file, from a thread of its own.
///
/// Paths begin with the name that was given to watch. Symbolic links below it are not followed. A
/// folder that comes into being, or is moved in, during the watch is reported with all that it
/// holds. A given folder may be missing, vanish and be replaced while it is watched. A folder that
/// lies in two given ones is reported under the first. A write through a memory mapping is
/// reported when the file is closed.
class FSEventStream {
public:
    using Handler = std::function<void(FSEventBatch)>;

    struct Options {
        std::vector<std::string> paths{}; ///< absolute, of folders
        /// The first event of a quiet period comes at once; what follows is gathered so long.
        std::chrono::milliseconds latency{100};
        /// The name of the serial queue (a thread, which may have only the name's beginning).
        std::string queueLabel{};
    };

    /// Watches from before this returns. `handler` is called on the stream's own thread, one call
    /// at a time. Null when the system can't give a stream.
    [[nodiscard]] static std::unique_ptr<FSEventStream> start(Options options, Handler handler);

    FSEventStream() = default;
    FSEventStream(const FSEventStream&) = delete;
    FSEventStream& operator=(const FSEventStream&) = delete;
    /// Stops.
    virtual ~FSEventStream() = default;

    /// Delivers every event that happened before this call, then ends: no call of the handler
    /// follows the return. Must not be called from the handler. A second call does nothing.
    virtual void stop() = 0;
};

} // namespace quorvel

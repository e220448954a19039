#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace quorvel {

/// One event as the system's queue holds it.
struct InotifyEvent {
    int watch = -1;
    std::uint32_t mask = 0;
    std::uint32_t cookie = 0; ///< the same for both sides of a rename
    std::string name{};       ///< empty for the watched folder itself
};

/// The number of bytes that wait in the queue. Every change whose system call has returned is in
/// it.
[[nodiscard]] std::size_t inotifyQueueSize(int descriptor);

/// Reads once, without waiting, and hands the events over. Gives the number of bytes that were
/// read.
std::size_t readInotifyQueue(int descriptor, const std::function<void(const InotifyEvent&)>& take);

/// Calls `read`, which reads once from the queue and returns the number of bytes, until all that
/// is queued by now is read, and no more.
void readWhatIsQueued(int descriptor, const std::function<std::size_t()>& read);

} // namespace quorvel

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace quorvel {

/// One event of an inotify queue.
struct InotifyEvent {
    int watch = -1;
    std::uint32_t mask = 0;
    std::uint32_t cookie = 0; ///< equal for both sides of a rename
    std::string name{};       ///< empty for the watched folder itself
};

/// Returns the number of queued bytes. Every change whose system call has returned is queued.
[[nodiscard]] std::size_t inotifyQueueSize(int descriptor);

/// Reads once from the queue, without waiting, and calls `take` for each event. Returns the number
/// of bytes that were read.
std::size_t readInotifyQueue(int descriptor, const std::function<void(const InotifyEvent&)>& take);

/// Calls `read`, which reads once from the queue and returns the number of bytes, until everything
/// that is queued at the time of this call has been read.
void drainInotifyQueue(int descriptor, const std::function<std::size_t()>& read);

} // namespace quorvel

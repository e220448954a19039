#include "Platform/watching/InotifyQueue_linux.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace quorvel {

std::size_t inotifyQueueSize(int descriptor) {
    int size = 0;
    return ::ioctl(descriptor, FIONREAD, &size) == 0 && size > 0 ? static_cast<std::size_t>(size)
                                                                 : 0;
}

std::size_t readInotifyQueue(int descriptor, const std::function<void(const InotifyEvent&)>& take) {
    alignas(inotify_event) std::array<char, 65536> buffer;
    ssize_t length = 0;
    do {
        length = ::read(descriptor, buffer.data(), buffer.size());
    } while (length < 0 && errno == EINTR);
    const std::size_t end = length > 0 ? static_cast<std::size_t>(length) : 0;
    InotifyEvent event;
    for (std::size_t at = 0; at + sizeof(inotify_event) <= end;) {
        inotify_event raw{};
        std::memcpy(&raw, buffer.data() + at, sizeof raw);
        event.watch = raw.wd;
        event.mask = raw.mask;
        event.cookie = raw.cookie;
        event.name.assign(buffer.data() + at + sizeof raw,
                          ::strnlen(buffer.data() + at + sizeof raw, raw.len));
        take(event);
        at += sizeof raw + raw.len;
    }
    return end;
}

void drainInotifyQueue(int descriptor, const std::function<std::size_t()>& read) {
    for (std::size_t left = inotifyQueueSize(descriptor); left > 0;) {
        const std::size_t count = read();
        if (count == 0) {
            return;
        }
        left -= std::min(left, count);
    }
}

} // namespace quorvel

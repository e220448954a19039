#include "Platform/files/FileHandle.h"

#include <cerrno>
#include <unistd.h>

namespace quorvel {

FileHandle::~FileHandle() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

bool FileHandle::write(std::string_view bytes) const noexcept {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace quorvel

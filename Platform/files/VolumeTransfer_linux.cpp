#include "Platform/files/VolumeTransfer.h"

#include <cerrno>
#include <optional>
#include <string>
#include <string_view>
#include <sys/xattr.h>
#include <unistd.h>

namespace quorvel::VolumeTransfer {
namespace {

// Returns all bytes from `read`, which takes a buffer and its size; with size 0 it returns the
// size.
template<typename Read>
std::optional<std::string> bytesFrom(const Read& read) {
    std::string bytes;
    while (true) {
        const ssize_t size = read(nullptr, 0);
        if (size <= 0) {
            return size == 0 ? std::optional<std::string>(std::in_place) : std::nullopt;
        }
        bytes.resize(static_cast<std::size_t>(size));
        const ssize_t count = read(bytes.data(), bytes.size());
        // The value grew between the two calls.
        if (count < 0 && errno == ERANGE) {
            continue;
        }
        if (count < 0) {
            return std::nullopt;
        }
        bytes.resize(static_cast<std::size_t>(count));
        return bytes;
    }
}

bool copyAttribute(int from, int to, const char* name) {
    const auto value = bytesFrom(
        [&](char* bytes, std::size_t size) { return ::fgetxattr(from, name, bytes, size); });
    return value && ::fsetxattr(to, name, value->data(), value->size(), 0) == 0;
}

} // namespace

std::array<timespec, 2> datesIn(const struct stat& status) {
    return {status.st_atim, status.st_mtim};
}

timespec changeIn(const struct stat& status) {
    return status.st_ctim;
}

bool copyExtendedAttributes(int from, int to) {
    const auto names =
        bytesFrom([&](char* bytes, std::size_t size) { return ::flistxattr(from, bytes, size); });
    if (!names) {
        return errno == ENOTSUP;
    }
    for (std::size_t start = 0; start < names->size();) {
        const std::string_view name = names->c_str() + start;
        if (!copyAttribute(from, to, name.data()) && name.starts_with("user.")) {
            return false;
        }
        start += name.size() + 1;
    }
    return true;
}

bool flushFileSystem(int descriptor) {
    return ::syncfs(descriptor) == 0;
}

} // namespace quorvel::VolumeTransfer

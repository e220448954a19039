#include "Platform/files/ByteCopy.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace {

struct Range {
    off_t start = 0;
    off_t end = 0;
};

// Returns the next data at or after `offset`, or an empty range if only a hole follows.
Range nextBytes(const FileHandle& file, off_t offset, off_t size) {
    const off_t start = ::lseek(file.descriptor(), offset, SEEK_DATA);
    if (start < 0) {
        // Other errors come from file systems without holes.
        return errno == ENXIO ? Range{size, size} : Range{offset, size};
    }
    const off_t end = ::lseek(file.descriptor(), start, SEEK_HOLE);
    return {start, end > start ? std::min(end, size) : size};
}

bool writeAll(const FileHandle& to, const char* bytes, std::size_t count, off_t offset) {
    while (count > 0) {
        const ssize_t written = ::pwrite(to.descriptor(), bytes, count, offset);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return false;
        }
        bytes += written;
        count -= static_cast<std::size_t>(written);
        offset += written;
    }
    return true;
}

bool copyRange(const FileHandle& from, const FileHandle& to, Range range) {
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): read into
    while (range.start < range.end) {
        const auto wanted =
            std::min(buffer.size(), static_cast<std::size_t>(range.end - range.start));
        const ssize_t count = ::pread(from.descriptor(), buffer.data(), wanted, range.start);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return count == 0;
        }
        if (!writeAll(to, buffer.data(), static_cast<std::size_t>(count), range.start)) {
            return false;
        }
        range.start += count;
    }
    return true;
}

} // namespace

bool copyBytes(const FileHandle& from, const FileHandle& to) {
    struct stat facts {};
    if (::fstat(from.descriptor(), &facts) != 0) {
        return false;
    }
    off_t written = 0;
    for (Range range{}; range.end < facts.st_size;) {
        range = nextBytes(from, range.end, facts.st_size);
        if (range.start < range.end) {
            if (!copyRange(from, to, range)) {
                return false;
            }
            written = range.end;
        }
    }
    // A hole at the end is created by setting the length.
    return written == facts.st_size || ::ftruncate(to.descriptor(), facts.st_size) == 0;
}

} // namespace quorvel

#include "Platform/copying/ByteCopy.h"

#include "Platform/copying/FileCloning.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace {

using Observer = std::function<void(std::size_t)>;

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

// Copies as much as the system does itself, and moves the range's start past that.
void copyInSystem(const FileHandle& from, const FileHandle& to, Range& range,
                  const Observer& copied) {
    constexpr std::size_t most = std::size_t{8} << 20U;
    while (range.start < range.end) {
        const auto wanted = std::min(most, static_cast<std::size_t>(range.end - range.start));
        const ssize_t count = copyRange(from.descriptor(), to.descriptor(), range.start, wanted);
        if (count <= 0) {
            return;
        }
        range.start += count;
        if (copied) {
            copied(static_cast<std::size_t>(count));
        }
    }
}

bool copyRest(const FileHandle& from, const FileHandle& to, Range range, const Observer& copied) {
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
        if (copied) {
            copied(static_cast<std::size_t>(count));
        }
    }
    return true;
}

// Asking for holes takes longer than copying a small file.
bool mayHaveHoles(const struct stat& facts) {
    constexpr off_t unit = 512;
    return facts.st_blocks * unit < facts.st_size;
}

} // namespace

bool copyBytes(const FileHandle& from, const FileHandle& to, const Observer& copied) {
    struct stat facts {};
    if (::fstat(from.descriptor(), &facts) != 0) {
        return false;
    }
    off_t written = 0;
    for (Range range{}; range.end < facts.st_size;) {
        range = mayHaveHoles(facts) ? nextBytes(from, range.end, facts.st_size)
                                    : Range{0, facts.st_size};
        if (range.start < range.end) {
            Range rest = range;
            copyInSystem(from, to, rest, copied);
            if (!copyRest(from, to, rest, copied)) {
                return false;
            }
            written = range.end;
        }
    }
    // A hole at the end is created by setting the length.
    return written == facts.st_size || ::ftruncate(to.descriptor(), facts.st_size) == 0;
}

} // namespace quorvel

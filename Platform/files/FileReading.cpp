#include "Platform/files/FileReading.h"

#include "Platform/files/RegularFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace quorvel {
namespace {

bool readWhole(const RegularFile& file, std::size_t limit, std::string& bytes) {
    if (!file.isOpen() || file.size > limit) {
        return false;
    }
    // One byte more than the file has: notices a file that grows, and needs only one read.
    bytes.resize(file.size + 1);
    std::size_t length = 0;
    while (true) {
        const ssize_t count =
            ::read(file.descriptor(), bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return false;
        }
        length += static_cast<std::size_t>(count);
        if (length < bytes.size()) {
            // Files in /proc report no size: only a read that returns nothing proves their end.
            if (count == 0 || length == file.size) {
                break;
            }
            continue;
        }
        if (length > limit) {
            break;
        }
        bytes.resize(bytes.size() * 2 + 4096);
    }
    bytes.resize(std::min(length, bytes.size()));
    return length <= limit;
}

} // namespace

bool readFileIn(int folder, const std::string& path, std::size_t limit, std::string& bytes) {
    return readWhole(openRegularFile(path, O_RDONLY, 0, folder), limit, bytes);
}

std::optional<std::string> linkTargetIn(int folder, const char* name) {
    std::array<char, 4096> target{};
    const ssize_t length = ::readlinkat(folder, name, target.data(), target.size());
    return length < 0 ? std::nullopt
                      : std::optional(std::string(target.data(), static_cast<std::size_t>(length)));
}

bool hasContents(const std::string& path, std::string_view bytes) {
    const RegularFile file = openRegularFile(path, O_RDONLY);
    if (!file.isOpen() || file.size != bytes.size()) {
        return false;
    }
    std::array<char, 65536> block{};
    while (true) {
        const ssize_t count = ::read(file.descriptor(), block.data(), block.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return count == 0 && bytes.empty();
        }
        const std::string_view read(block.data(), static_cast<std::size_t>(count));
        if (!bytes.starts_with(read)) {
            return false;
        }
        bytes.remove_prefix(read.size());
    }
}

std::optional<std::string> readFile(const std::string& path, std::size_t limit) {
    std::optional<std::string> bytes(std::in_place);
    if (!readFileIn(AT_FDCWD, path, limit, *bytes)) {
        bytes.reset();
    }
    return bytes;
}

} // namespace quorvel

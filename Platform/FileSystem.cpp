#include "Platform/FileSystem.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Without O_NONBLOCK, opening a FIFO would wait for its other end.
FileHandle openRegularFile(const fs::path& path, int flags, mode_t mode = 0) {
    if (hasNul(path)) {
        errno = EINVAL;
        return FileHandle(-1);
    }
    FileHandle file(::open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, mode));
    struct stat status {};
    if (file.descriptor() >= 0 && ::fstat(file.descriptor(), &status) == 0 &&
        !S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return FileHandle(-1);
    }
    return file;
}

} // namespace

bool hasNul(const fs::path& path) noexcept {
    return path.native().find('\0') != std::string::npos;
}

fs::path joinAsText(const fs::path& base, std::string_view name) {
    std::string text = base.native();
    text.reserve(text.size() + 1 + name.size());
    return text.append(1, '/').append(name);
}

fs::path withoutTrailingSlashes(const fs::path& path) {
    std::string text = path.native();
    while (text.size() > 1 && text.back() == '/') {
        text.pop_back();
    }
    return text;
}

bool itemExists(const fs::path& path) noexcept {
    struct stat status {};
    return !hasNul(path) && ::stat(path.c_str(), &status) == 0;
}

bool itemOrLinkExists(const fs::path& path) noexcept {
    struct stat status {};
    return !hasNul(path) && ::lstat(path.c_str(), &status) == 0;
}

bool isSymbolicLink(const fs::path& path) noexcept {
    struct stat status {};
    return !hasNul(path) && ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool isSameItem(const fs::path& a, const fs::path& b) noexcept {
    struct stat first {};
    struct stat second {};
    return !hasNul(a) && !hasNul(b) && ::stat(a.c_str(), &first) == 0 &&
           ::stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

bool isExecutableFile(const fs::path& path) noexcept {
    struct stat status {};
    return !hasNul(path) && ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

std::optional<std::vector<std::string>> directoryEntries(const fs::path& folder) {
    if (hasNul(folder)) {
        return std::nullopt;
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.c_str()), &::closedir);
    if (!stream) {
        return std::nullopt;
    }
    std::vector<std::string> names;
    while (const dirent* entry = ::readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    return names;
}

std::optional<std::string> readFile(const fs::path& path, std::size_t limit) {
    const FileHandle file = openRegularFile(path, O_RDONLY);
    struct stat status {};
    if (file.descriptor() < 0 || ::fstat(file.descriptor(), &status) != 0 ||
        static_cast<std::size_t>(status.st_size) > limit) {
        return std::nullopt;
    }
    // One byte more than the file says: a file that grows meanwhile is noticed, and a whole one
    // needs a single read.
    std::string bytes(static_cast<std::size_t>(status.st_size) + 1, '\0');
    std::size_t length = 0;
    while (true) {
        const ssize_t count =
            ::read(file.descriptor(), bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return std::nullopt;
        }
        length += static_cast<std::size_t>(count);
        if (length < bytes.size()) {
            // Files of /proc and the like have no size, so only an end that was seen is an end.
            if (count == 0 || length == static_cast<std::size_t>(status.st_size)) {
                break;
            }
            continue;
        }
        if (length > limit) {
            break;
        }
        bytes.resize(bytes.size() * 2 + 4096);
    }
    if (length > limit) {
        return std::nullopt;
    }
    bytes.resize(length);
    return bytes;
}

void writeFile(const fs::path& path, std::string_view bytes) {
    const FileHandle file = openRegularFile(path, O_WRONLY | O_CREAT, 0666);
    struct stat status {};
    if (file.descriptor() < 0 || ::fstat(file.descriptor(), &status) != 0 ||
        // Only an old file is cut: ext4 takes the cutting of a new one as a reason to write at once.
        (status.st_size > 0 && ::ftruncate(file.descriptor(), 0) != 0) || !file.write(bytes)) {
        throw PlatformError::fromErrno(path, "written");
    }
}

void createDirectories(const fs::path& folder) {
    std::error_code code;
    if (hasNul(folder)) {
        code = std::make_error_code(std::errc::invalid_argument);
    } else {
        // A slash at the end would make the last component empty, which counts as not created.
        fs::create_directories(withoutTrailingSlashes(folder), code);
    }
    if (!code && !fs::is_directory(folder, code) && !code) {
        code = std::make_error_code(std::errc::not_a_directory);
    }
    if (code) {
        throw PlatformError(code, folder, "created");
    }
}

std::optional<FileHandle> openForAppending(const fs::path& path) {
    FileHandle file = openRegularFile(path, O_WRONLY | O_APPEND | O_CREAT, 0666);
    if (file.descriptor() < 0) {
        return std::nullopt;
    }
    return file;
}

} // namespace quorvel

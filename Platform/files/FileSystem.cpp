#include "Platform/files/FileSystem.h"

#include "Base/PathText.h"
#include "Platform/files/Folder.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

struct RegularFile {
    FileHandle handle;
    std::size_t size = 0;

    [[nodiscard]] bool isOpen() const { return handle.descriptor() >= 0; }
    [[nodiscard]] int descriptor() const { return handle.descriptor(); }
};

// Without O_NONBLOCK, opening a FIFO would wait for its other end.
RegularFile openRegularFile(const std::string& path, int flags, mode_t mode = 0,
                            int folder = AT_FDCWD) {
    if (hasNul(path)) {
        errno = EINVAL;
        return {FileHandle(-1)};
    }
    FileHandle file(
        ::openat(folder, path.c_str(), flags | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, mode));
    struct stat status {};
    if (file.descriptor() < 0 || ::fstat(file.descriptor(), &status) != 0) {
        return {FileHandle(-1)};
    }
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return {FileHandle(-1)};
    }
    return {std::move(file), static_cast<std::size_t>(status.st_size)};
}

// A log that nobody wants is a link to /dev/null.
std::optional<FileHandle> openCharacterDevice(const fs::path& path) {
    constexpr int flags = O_WRONLY | O_APPEND;
    struct stat status {};
    if (hasNul(path) || ::stat(path.c_str(), &status) != 0 || !S_ISCHR(status.st_mode)) {
        return std::nullopt;
    }
    FileHandle device(::open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    // What was opened without waiting is written to as usual.
    if (device.descriptor() < 0 || ::fstat(device.descriptor(), &status) != 0 ||
        !S_ISCHR(status.st_mode) || ::fcntl(device.descriptor(), F_SETFL, flags) != 0) {
        return std::nullopt;
    }
    return device;
}

bool readWhole(const RegularFile& file, std::size_t limit, std::string& bytes) {
    if (!file.isOpen() || file.size > limit) {
        return false;
    }
    // One byte more than the file says: a file that grows meanwhile is noticed, and a whole one
    // needs a single read.
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
            // Files of /proc and the like have no size, so only an end that was seen is an end.
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

std::optional<Folder> Folder::open(const fs::path& path) {
    DIR* stream = hasNul(path) ? nullptr : ::opendir(path.c_str());
    return stream == nullptr ? std::nullopt : std::optional(Folder(path, stream));
}

std::optional<Folder> Folder::owning(int descriptor) {
    DIR* stream = descriptor < 0 ? nullptr : ::fdopendir(descriptor);
    if (stream == nullptr && descriptor >= 0) {
        ::close(descriptor);
    }
    return stream == nullptr ? std::nullopt : std::optional(Folder({}, stream));
}

std::vector<std::string> Folder::entries() {
    std::vector<std::string> names;
    ::rewinddir(stream_.get());
    while (const dirent* entry = ::readdir(stream_.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    return names;
}

bool Folder::has(const std::string& path) const {
    struct stat status {};
    return !hasNul(path) && ::fstatat(::dirfd(stream_.get()), path.c_str(), &status, 0) == 0;
}

bool Folder::read(const std::string& path, std::size_t limit, std::string& bytes) const {
    return readWhole(openRegularFile(path, O_RDONLY, 0, ::dirfd(stream_.get())), limit, bytes);
}

std::optional<std::vector<std::string>> directoryEntries(const fs::path& folder) {
    std::optional<Folder> open = Folder::open(folder);
    return open ? std::optional(open->entries()) : std::nullopt;
}

std::optional<std::string> readFile(const std::string& path, std::size_t limit) {
    std::optional<std::string> bytes(std::in_place);
    if (!readWhole(openRegularFile(path, O_RDONLY), limit, *bytes)) {
        bytes.reset();
    }
    return bytes;
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

void createPrivateFolder(const fs::path& folder) {
    if (hasNul(folder)) {
        errno = EINVAL;
    } else if (::mkdir(folder.c_str(), 0700) == 0) {
        return;
    }
    throw PlatformError::fromErrno(folder, "created");
}

std::optional<FileHandle> openForAppending(const fs::path& path) {
    RegularFile file = openRegularFile(path, O_WRONLY | O_APPEND | O_CREAT, 0666);
    return file.isOpen() ? std::optional(std::move(file.handle)) : openCharacterDevice(path);
}

} // namespace quorvel

#include "Platform/FileLock.h"

#include "Platform/FileSystem.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

// O_NONBLOCK, since opening a FIFO would wait for its other end.
FileHandle openRegular(const std::filesystem::path& path) {
    if (hasNul(path)) {
        throw PlatformError(std::make_error_code(std::errc::invalid_argument), path, "locked");
    }
    FileHandle file(::open(
        path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0600));
    if (file.descriptor() < 0) {
        throw errno == ELOOP ? PlatformError::because("it is a symbolic link", path, "locked")
                             : PlatformError::fromErrno(path, "locked");
    }
    struct stat status {};
    if (::fstat(file.descriptor(), &status) != 0 || !S_ISREG(status.st_mode)) {
        throw PlatformError::because("it is not a regular file", path, "locked");
    }
    return file;
}

bool isStillAt(const std::filesystem::path& path, const FileHandle& file) {
    struct stat named {};
    struct stat open {};
    return ::lstat(path.c_str(), &named) == 0 && ::fstat(file.descriptor(), &open) == 0 &&
           named.st_dev == open.st_dev && named.st_ino == open.st_ino;
}

} // namespace

bool FileLock::isHeld(const std::filesystem::path& path) {
    if (hasNul(path)) {
        return false;
    }
    const FileHandle file(
        ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    struct stat status {};
    return file.descriptor() >= 0 && ::fstat(file.descriptor(), &status) == 0 &&
           S_ISREG(status.st_mode) && ::flock(file.descriptor(), LOCK_SH | LOCK_NB) != 0 &&
           errno == EWOULDBLOCK;
}

std::optional<FileLock> FileLock::tryTake(const std::filesystem::path& path) {
    constexpr int attempts = 100;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        FileHandle file = openRegular(path);
        while (::flock(file.descriptor(), LOCK_EX | LOCK_NB) != 0) {
            if (errno == EWOULDBLOCK) {
                return std::nullopt;
            }
            if (errno != EINTR) {
                throw PlatformError::fromErrno(path, "locked");
            }
        }
        // A file that was removed or replaced in between guards nothing any more.
        if (isStillAt(path, file)) {
            return FileLock(std::move(file));
        }
    }
    throw PlatformError::because("it is replaced all the time", path, "locked");
}

} // namespace quorvel

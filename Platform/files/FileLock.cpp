#include "Platform/files/FileLock.h"

#include "Base/PathText.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/files/PlatformError.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>

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

} // namespace

PendingLock PendingLock::onFile(const std::filesystem::path& path) {
    return {openRegular(path), path};
}

PendingLock PendingLock::onFolder(const std::filesystem::path& path) {
    FileHandle folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.descriptor() < 0) {
        throw PlatformError::fromErrno(path, "locked");
    }
    return {std::move(folder), path};
}

bool PendingLock::tryTake() {
    if (!lockNow()) {
        return false;
    }
    if (isStillThere()) {
        return true;
    }
    release();
    return false;
}

void PendingLock::release() noexcept {
    (void)::flock(file_.descriptor(), LOCK_UN);
}

// Returns false if the lock is held already.
bool PendingLock::lockNow() const {
    while (::flock(file_.descriptor(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) {
            return false;
        }
        if (errno != EINTR) {
            throw PlatformError::fromErrno(path_, "locked");
        }
    }
    return true;
}

// The lock on a file that was removed or replaced in between protects nothing.
bool PendingLock::isStillThere() const {
    struct stat open {};
    return ::fstat(file_.descriptor(), &open) == 0 && identityOf(path_) == identityOf(open);
}

std::optional<FileLock> FileLock::tryTake(const std::filesystem::path& path) {
    constexpr int attempts = 100;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        PendingLock file = PendingLock::onFile(path);
        if (!file.lockNow()) {
            return std::nullopt;
        }
        if (file.isStillThere()) {
            return FileLock(std::move(file.file_));
        }
    }
    throw PlatformError::because("another program keeps replacing it", path, "locked");
}

std::optional<FileLock> FileLock::tryTakeFolder(const std::filesystem::path& path) {
    PendingLock folder = PendingLock::onFolder(path);
    return folder.lockNow() ? std::optional(FileLock(std::move(folder.file_))) : std::nullopt;
}

std::optional<FileLock> FileLock::takeFolder(const std::filesystem::path& path,
                                             std::chrono::milliseconds patience) {
    constexpr std::chrono::milliseconds pause{5};
    const auto end = std::chrono::steady_clock::now() + patience;
    std::optional<FileLock> lock = tryTakeFolder(path);
    while (!lock && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(pause);
        lock = tryTakeFolder(path);
    }
    return lock;
}

bool FileLock::isHeld(const std::filesystem::path& path) {
    if (hasNul(path)) {
        return false;
    }
    const FileHandle file(
        ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    // A shared lock, so that simultaneous checks don't see each other.
    return file.descriptor() >= 0 && ::flock(file.descriptor(), LOCK_SH | LOCK_NB) != 0 &&
           errno == EWOULDBLOCK;
}

} // namespace quorvel

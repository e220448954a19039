#include "Platform/FileSystem.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

int renameWhereFree(const fs::path& source, const fs::path& destination,
                    const ExclusiveRename& exclusively) {
    const int result = exclusively(source, destination);
    if (result == 0 || (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP)) {
        return result;
    }
    // Network file systems know no exclusive renaming; there a look beforehand has to do.
    if (itemOrLinkExists(destination)) {
        errno = EEXIST;
        return -1;
    }
    return ::rename(source.c_str(), destination.c_str());
}

void copyTree(const fs::path& source, const fs::path& destination, std::error_code& code) {
    fs::copy(source, destination, fs::copy_options::recursive | fs::copy_options::copy_symlinks,
             code);
    if (code || fs::is_symlink(source)) {
        return;
    }
    std::error_code ignored;
    const auto time = fs::last_write_time(source, ignored);
    if (!ignored) {
        fs::last_write_time(destination, time, ignored);
    }
}

// The library's own copying calls every failure to write an input/output error, a full disk too.
bool copyBytes(const FileHandle& from, const FileHandle& to) {
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): read into
    while (true) {
        const ssize_t count = ::read(from.descriptor(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return count == 0;
        }
        if (!to.write({buffer.data(), static_cast<std::size_t>(count)})) {
            return false;
        }
    }
}

void refuseNul(const fs::path& source, const fs::path& destination, const std::string& action) {
    if (hasNul(source) || hasNul(destination)) {
        throw PlatformError(std::make_error_code(std::errc::invalid_argument), source, action);
    }
}

} // namespace

void copyFile(const fs::path& source, const fs::path& destination) {
    refuseNul(source, destination, "copied");
    const FileHandle from(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat facts {};
    if (from.descriptor() < 0 || ::fstat(from.descriptor(), &facts) != 0) {
        throw PlatformError::fromErrno(source, "copied");
    }
    if (!S_ISREG(facts.st_mode)) {
        throw PlatformError(std::make_error_code(std::errc::not_supported), source, "copied");
    }
    const FileHandle to(::open(destination.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (to.descriptor() < 0) {
        throw PlatformError::fromErrno(source, "copied");
    }
    if (::fchmod(to.descriptor(), facts.st_mode & 0777U) != 0 || !copyBytes(from, to)) {
        const PlatformError error = PlatformError::fromErrno(source, "copied");
        (void)::unlink(destination.c_str());
        throw error;
    }
}

void moveItem(const fs::path& source, const fs::path& destination,
              const ExclusiveRename& exclusively) {
    refuseNul(source, destination, "moved");
    if (renameWhereFree(source, destination, exclusively) == 0) {
        return;
    }
    if (errno != EXDEV) {
        throw PlatformError::fromErrno(source, "moved");
    }
    std::error_code code;
    if (itemOrLinkExists(destination)) {
        throw PlatformError(std::make_error_code(std::errc::file_exists), source, "moved");
    }
    copyTree(source, destination, code);
    std::error_code ignored;
    if (code) {
        fs::remove_all(destination, ignored);
        throw PlatformError(code, source, "moved");
    }
    fs::remove_all(source, ignored);
}

} // namespace quorvel

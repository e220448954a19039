#include "Platform/FileSystem.h"

#include <cerrno>
#include <cstdio>

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

void refuseNul(const fs::path& source, const fs::path& destination, const std::string& action) {
    if (hasNul(source) || hasNul(destination)) {
        throw PlatformError(std::make_error_code(std::errc::invalid_argument), source, action);
    }
}

} // namespace

void copyFile(const fs::path& source, const fs::path& destination) {
    refuseNul(source, destination, "copied");
    std::error_code code;
    if (!fs::copy_file(source, destination, fs::copy_options::none, code)) {
        throw PlatformError(code ? code : std::make_error_code(std::errc::file_exists), source,
                            "copied");
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

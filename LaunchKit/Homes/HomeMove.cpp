#include "LaunchKit/Homes/HomeMove.h"

#include "Platform/files/FileHandle.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/MountBoundary.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/UnsupportedOperation.h"
#include "Platform/staging/ExclusiveRename.h"
#include "Platform/staging/TreeFlush.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

bool isLinkTo(const fs::path& link, const fs::path& target) {
    std::error_code code;
    return fs::read_symlink(link, code) == target && !code;
}

bool isRealFolder(const fs::path& path) {
    std::error_code code;
    return fs::symlink_status(path, code).type() == fs::file_type::directory;
}

bool flushFolderOf(const fs::path& item) {
    const FileHandle folder(openFolderForNames(item.parent_path()));
    return folder.descriptor() >= 0 && flushFolder(folder.descriptor());
}

void requireMovable(const fs::path& home, const fs::path& newHome) {
    if (!isRealFolder(home)) {
        throw PlatformError::because("it is not a folder", home, "moved");
    }
    const FileHandle above(openFolderForNames(home.parent_path()));
    const FileHandle newAbove(openFolderForNames(newHome.parent_path()));
    const auto mount = mountOf(above.descriptor(), home.filename().c_str());
    if (!mount || mount != mountOf(above.descriptor()) || mount != mountOf(newAbove.descriptor())) {
        throw PlatformError::because("it is on another file system", home, "moved");
    }
}

// Without an exchange, `newHome` leads nowhere between the two steps.
int takePlaceOfLink(const fs::path& home, const fs::path& newHome) {
    if (exchangeItems(AT_FDCWD, home.c_str(), AT_FDCWD, newHome.c_str()) == 0) {
        return 0;
    }
    if (!meansNoSuchRename(errno)) {
        return -1;
    }
    return ::unlink(newHome.c_str()) == 0 ? ::rename(home.c_str(), newHome.c_str()) : -1;
}

} // namespace

void prepareHomeMove(const fs::path& home, const fs::path& newHome) {
    requireMovable(home, newHome);
    if (::symlink(home.c_str(), newHome.c_str()) != 0) {
        throw PlatformError::fromErrno(newHome, "created");
    }
    if (!flushFolderOf(newHome)) {
        const PlatformError error = PlatformError::fromErrno(newHome, "created");
        cancelHomeMove(home, newHome);
        throw PlatformError(error);
    }
}

void completeHomeMove(const fs::path& home, const fs::path& newHome) {
    if (isRealFolder(home) && (isLinkTo(newHome, home) || !itemOrLinkExists(newHome))) {
        const int result = isLinkTo(newHome, home) ? takePlaceOfLink(home, newHome)
                                                   : ::rename(home.c_str(), newHome.c_str());
        if (result != 0) {
            throw PlatformError::fromErrno(home, "moved");
        }
    }
    // The link that has taken the folder's place leads to itself. Whatever of the rest is lost in a
    // power failure, the new path leads to the data.
    if (isLinkTo(home, home)) {
        (void)::unlink(home.c_str());
    }
    (void)flushFolderOf(newHome);
    (void)flushFolderOf(home);
}

void cancelHomeMove(const fs::path& home, const fs::path& newHome) noexcept {
    if (isLinkTo(newHome, home) && isRealFolder(home)) {
        (void)::unlink(newHome.c_str());
    }
}

} // namespace quorvel

#include "Platform/removal/ItemRemoval.h"

#include "Base/PathText.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/PlatformError.h"
#include "Platform/removal/FileRemoval.h"
#include "Platform/removal/ItemProtection.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr int mostPasses = 3;

std::error_code systemError(int error) {
    return {error, std::generic_category()};
}

bool isMissing(int error) {
    return error == ENOENT || error == ENOTDIR;
}

bool isNotEmpty(int error) {
    return error == ENOTEMPTY || error == EEXIST;
}

bool canChange(int folder) {
    return ::faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) == 0;
}

// Whether the folder is sticky, in which only owners may remove items, and the user owns neither
// the folder nor the item.
bool isKeptBySticky(int folder, const char* name) {
    struct stat above {};
    struct stat item {};
    const uid_t user = ::geteuid();
    return user != 0 && ::fstat(folder, &above) == 0 && (above.st_mode & S_ISVTX) != 0 &&
           ::fstatat(folder, name, &item, AT_SYMLINK_NOFOLLOW) == 0 && user != above.st_uid &&
           user != item.st_uid;
}

} // namespace

// One attempt at everything.
struct ItemRemoval::Pass {
    std::size_t removed = 0;
    std::size_t remaining = 0;
    bool onlyNotEmpty = true; ///< the reason for everything that remains
    std::string below{};      ///< the first of them, relative to the item
    int error = 0;

    void count(int result, int why, const FolderWalk* walk) {
        if (result == 0) {
            ++removed;
        } else if (why != ENOENT) {
            if (remaining++ == 0) {
                below = walk != nullptr ? walk->path() : "";
                error = why;
            }
            onlyNotEmpty = onlyNotEmpty && isNotEmpty(why);
        }
    }
};

std::optional<ItemRemoval> ItemRemoval::of(const fs::path& path) {
    if (hasNul(path)) {
        throw PlatformError(systemError(EINVAL), path, "removed");
    }
    if (holdsUserHome(path)) {
        throw PlatformError(systemError(EPERM), path, "removed");
    }
    // With a trailing slash, a link's path would mean its target.
    ItemRemoval item(withoutTrailingSlashes(path));
    item.name_ = item.path_.filename().string();
    if (item.name_.empty() || item.name_ == "." || item.name_ == "..") {
        throw PlatformError(systemError(EINVAL), item.path_, "removed");
    }
    if (!item.findInParent()) {
        return std::nullopt;
    }
    if (item.isFolder_ && !item.isMountPoint_) {
        item.openFolder();
    }
    return item;
}

// Returns whether the item exists.
bool ItemRemoval::findInParent() {
    const fs::path above = path_.parent_path();
    parent_ = FileHandle(openFolderForNames(above.empty() ? "." : above));
    struct stat status {};
    if (parent_.descriptor() < 0 ||
        ::fstatat(parent_.descriptor(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        if (isMissing(errno)) {
            return false;
        }
        throw PlatformError::fromErrno(path_, "removed");
    }
    const std::optional<Mount> mount = mountOf(parent_.descriptor());
    if (!mount) {
        throw PlatformError::fromErrno(path_, "removed");
    }
    mount_ = *mount;
    identity_ = identityOf(status);
    isFolder_ = S_ISDIR(status.st_mode);
    isMountPoint_ = mountOf(parent_.descriptor(), name_.c_str()) != mount;
    return true;
}

void ItemRemoval::openFolder() {
    folder_ = FileHandle(openFolderOnMount(parent_.descriptor(), name_.c_str(), mount_));
    // An empty folder can be removed without permission to read it.
    if (folder_.descriptor() < 0 && errno != EACCES) {
        throw PlatformError::fromErrno(path_, "removed");
    }
    struct stat status {};
    if (folder_.descriptor() >= 0 && ::fstat(folder_.descriptor(), &status) == 0) {
        identity_ = identityOf(status);
    }
}

void ItemRemoval::refuseMountAt(const std::string& below) const {
    const fs::path at = below.empty() ? path_ : path_ / below;
    throw PlatformError::because(
        "another folder is mounted at " + at.string() + "; unmount it first", path_, "removed");
}

void ItemRemoval::refuseMounts() const {
    if (isMountPoint_) {
        refuseMountAt({});
    }
    if (folder_.descriptor() < 0) {
        return;
    }
    FolderWalk walk(folder_.descriptor(), mount_);
    while (const auto step = walk.next()) {
        const bool mounted = step->kind == FolderWalk::Kind::anotherMount ||
                             (step->kind == FolderWalk::Kind::item &&
                              mountOf(step->folder, step->name).value_or(mount_) != mount_);
        if (mounted) {
            refuseMountAt(walk.path());
        }
        // A folder that may not be listed may not be emptied either, so its mounts are safe.
        if (step->kind == FolderWalk::Kind::unreadable && step->error != EACCES) {
            throw failureAt(walk.path(), step->error);
        }
    }
}

void ItemRemoval::refuseProtected(int folder, const char* name, const fs::path& below) const {
    if (isProtected(folder, name)) {
        throw failureAt(below.string(), EPERM);
    }
}

void ItemRemoval::refuseUnchangeable(std::string_view kept) const {
    if (!canChange(parent_.descriptor())) {
        throw PlatformError::fromErrno(path_, "removed");
    }
    refuseProtected(parent_.descriptor(), ".", {});
    refuseProtected(parent_.descriptor(), name_.c_str(), {});
    if (isKeptBySticky(parent_.descriptor(), name_.c_str())) {
        throw PlatformError(systemError(EPERM), path_, "removed");
    }
    if (isFolder_ && !kept.empty()) {
        refuseClosedWayTo(kept);
    }
}

void ItemRemoval::refuseClosedWayTo(std::string_view kept) const {
    FileHandle folder(openFolderOnMount(parent_.descriptor(), name_.c_str(), mount_));
    fs::path below;
    for (const fs::path& part : fs::path(kept)) {
        // Missing folders don't prevent the removal.
        if (folder.descriptor() < 0 && (isMissing(errno) || errno == ELOOP)) {
            return;
        }
        if (folder.descriptor() < 0 || !canChange(folder.descriptor())) {
            throw PlatformError::fromErrno(path_, "removed");
        }
        refuseProtected(folder.descriptor(), part.c_str(), below /= part);
        folder = FileHandle(openFolderOnMount(folder.descriptor(), part.c_str(), mount_));
    }
}

void ItemRemoval::refuseClosedFolders() const {
    if (!isFolder_ || isMountPoint_) {
        return;
    }
    if (folder_.descriptor() < 0 || !canChange(folder_.descriptor())) {
        throw PlatformError(systemError(EACCES), path_, "removed");
    }
    FolderWalk walk(folder_.descriptor(), mount_);
    while (const auto step = walk.next()) {
        if (step->kind == FolderWalk::Kind::unreadable) {
            throw failureAt(walk.path(), step->error);
        }
        if (step->kind == FolderWalk::Kind::folderLeft &&
            ::faccessat(step->folder, step->name, W_OK | X_OK, AT_EACCESS) != 0) {
            throw failureAt(walk.path(), errno);
        }
        refuseProtected(step->folder, step->name, walk.path());
    }
}

void ItemRemoval::removeContents(std::string_view kept, Pass& pass) const {
    FolderWalk walk(folder_.descriptor(), mount_);
    while (const auto step = walk.next()) {
        if (!kept.empty() && isAtOrBelow(kept, walk.path())) {
            continue;
        }
        if (step->folder < 0 || step->kind == FolderWalk::Kind::anotherMount) {
            pass.count(-1, step->error, &walk);
            continue;
        }
        const bool folder = step->kind != FolderWalk::Kind::item;
        const int result = ::unlinkat(step->folder, step->name, folder ? AT_REMOVEDIR : 0);
        // If the folder can't be listed, that is why it is not empty.
        const bool closed = step->kind == FolderWalk::Kind::unreadable && isNotEmpty(errno);
        pass.count(result, closed ? step->error : errno, &walk);
    }
}

void ItemRemoval::removeItself(Pass& pass) const {
    struct stat status {};
    if (::fstatat(parent_.descriptor(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
        identityOf(status) != identity_) {
        pass.count(-1, ESTALE, nullptr);
        return;
    }
    const int result =
        ::unlinkat(parent_.descriptor(), name_.c_str(), isFolder_ ? AT_REMOVEDIR : 0);
    pass.count(result, errno, nullptr);
}

PlatformError ItemRemoval::failureAt(const std::string& below, int error) const {
    return {systemError(error), below.empty() ? path_ : path_ / below, "removed"};
}

RemovalReport ItemRemoval::inPasses(std::string_view kept, bool withItself) const {
    RemovalReport report;
    for (int number = 1;; ++number) {
        Pass pass;
        if (folder_.descriptor() >= 0) {
            removeContents(kept, pass);
        }
        if (withItself) {
            removeItself(pass);
        }
        report.removed += pass.removed;
        report.remaining = pass.remaining;
        report.failure =
            pass.remaining > 0 ? std::optional(failureAt(pass.below, pass.error)) : std::nullopt;
        // Running programs may have written into folders after they were emptied. Any other failure
        // is tried once more.
        const int passes = pass.onlyNotEmpty ? mostPasses : 2;
        if (pass.remaining == 0 || number >= passes) {
            return report;
        }
    }
}

RemovalReport ItemRemoval::removeAllBut(std::string_view kept) const {
    return inPasses(kept, false);
}

RemovalReport ItemRemoval::remove() const {
    return inPasses({}, true);
}

} // namespace quorvel

#include "Platform/staging/FolderLock.h"

#include "Platform/files/ItemIdentity.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <utility>

namespace quorvel {

bool lockFolder(const FileHandle& folder, WithoutLocks otherwise) noexcept {
    return ::flock(folder.descriptor(), LOCK_EX | LOCK_NB) == 0 ||
           (errno != EWOULDBLOCK && otherwise == WithoutLocks::isOurs);
}

FileHandle lockedFolder(int parent, const char* name, WithoutLocks otherwise) {
    FileHandle folder(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat opened {};
    struct stat named {};
    const bool isOurs = folder.descriptor() >= 0 && lockFolder(folder, otherwise) &&
                        ::fstat(folder.descriptor(), &opened) == 0 &&
                        ::fstatat(parent, name, &named, AT_SYMLINK_NOFOLLOW) == 0 &&
                        identityOf(opened) == identityOf(named);
    return isOurs ? std::move(folder) : FileHandle(-1);
}

} // namespace quorvel

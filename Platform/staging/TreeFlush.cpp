#include "Platform/staging/TreeFlush.h"

#include "Platform/files/FileHandle.h"
#include "Platform/files/FolderWalk.h"
#include "Platform/files/MountBoundary.h"
#include "Platform/files/UnsupportedOperation.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace {

constexpr int reading = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;

bool flushDescriptor(int descriptor) {
    return ::fsync(descriptor) == 0 || errno == EINVAL || errno == EROFS || meansUnsupported(errno);
}

// What may not be read can't be flushed by its name.
bool flushItem(int folder, const char* name) {
    struct stat status {};
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) {
        return true;
    }
    const FileHandle item(::openat(folder, name, reading));
    return item.descriptor() < 0 ? errno == EACCES : flushDescriptor(item.descriptor());
}

} // namespace

bool flushFolder(int folder) {
    return flushItem(folder, ".");
}

bool flushTree(int folder, const char* name) {
    const FileHandle root(::openat(folder, name, reading | O_DIRECTORY));
    if (root.descriptor() < 0) {
        return errno == ENOTDIR || errno == ELOOP ? flushItem(folder, name) : false;
    }
    const auto mount = mountOf(root.descriptor());
    if (!mount) {
        return false;
    }
    FolderWalk walk(root.descriptor(), *mount);
    while (const auto step = walk.next()) {
        if (step->kind == FolderWalk::Kind::unreadable) {
            errno = step->error;
            return false;
        }
        if (!flushItem(step->folder, step->name)) {
            return false;
        }
    }
    return flushDescriptor(root.descriptor());
}

} // namespace quorvel

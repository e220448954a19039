#include "Platform/files/FileCloning.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/clonefile.h>

namespace quorvel {

// Opened for reading only, since the clone has its original's mode.
FileHandle cloneFile(int from, int folder, const char* name) {
    return FileHandle(::fclonefileat(from, folder, name, 0) != 0
                          ? -1
                          : ::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
}

bool meansNoCloning(int error) {
    return error == ENOTSUP || error == EXDEV;
}

ssize_t copyRange(int /*from*/, int /*to*/, off_t /*offset*/, std::size_t /*count*/) {
    errno = ENOSYS;
    return -1;
}

} // namespace quorvel

#include "Platform/copying/FileCloning.h"

#include "Platform/files/UnsupportedOperation.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/clonefile.h>
#include <unistd.h>

namespace quorvel {

// Opened for reading only, since the clone has its original's mode.
FileHandle cloneFile(int from, int folder, const char* name) {
    if (::fclonefileat(from, folder, name, 0) != 0) {
        return FileHandle(-1);
    }
    FileHandle file(::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (file.descriptor() < 0) {
        const int error = errno;
        (void)::unlinkat(folder, name, 0);
        errno = error;
    }
    return file;
}

bool meansNoCloning(int error) {
    return error == EXDEV || meansUnsupported(error);
}

ssize_t copyRange(int /*from*/, int /*to*/, off_t /*offset*/, std::size_t /*count*/) {
    errno = ENOSYS;
    return -1;
}

} // namespace quorvel

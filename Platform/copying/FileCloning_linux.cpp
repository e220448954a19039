#include "Platform/copying/FileCloning.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace quorvel {

FileHandle cloneFile(int from, int folder, const char* name) {
    FileHandle file(::openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (file.descriptor() < 0 || ::ioctl(file.descriptor(), FICLONE, from) == 0) {
        return file;
    }
    const int error = errno;
    (void)::unlinkat(folder, name, 0);
    errno = error;
    return FileHandle(-1);
}

bool meansNoCloning(int error) {
    return error == EOPNOTSUPP || error == ENOTTY || error == EXDEV || error == ENOSYS;
}

ssize_t copyRange(int from, int to, off_t offset, std::size_t count) {
    loff_t in = offset;
    loff_t out = offset;
    return ::copy_file_range(from, &in, to, &out, count, 0);
}

} // namespace quorvel

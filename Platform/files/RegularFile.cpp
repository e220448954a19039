#include "Platform/files/RegularFile.h"

#include "Base/PathText.h"

#include <cerrno>
#include <sys/stat.h>

namespace quorvel {

RegularFile openRegularFile(const std::string& path, int flags, mode_t mode, int folder) {
    if (hasNul(path)) {
        errno = EINVAL;
        return {};
    }
    FileHandle file(
        ::openat(folder, path.c_str(), flags | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, mode));
    struct stat status {};
    if (file.descriptor() < 0 || ::fstat(file.descriptor(), &status) != 0) {
        return {};
    }
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return {};
    }
    return {std::move(file), static_cast<std::size_t>(status.st_size)};
}

} // namespace quorvel

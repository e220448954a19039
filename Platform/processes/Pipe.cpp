#include "Platform/processes/Pipe.h"

#include "Platform/files/PlatformError.h"

#include <fcntl.h>
#include <unistd.h>

namespace quorvel {

Pipe openPipe(const std::filesystem::path& path, const std::string& action) {
    int ends[2];
    if (::pipe(ends) != 0) {
        throw PlatformError::fromErrno(path, action);
    }
    ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    return {FileHandle(ends[0]), FileHandle(ends[1])};
}

} // namespace quorvel

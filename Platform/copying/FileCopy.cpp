#include "Platform/copying/FileCopy.h"

#include "Base/PathText.h"
#include "Platform/copying/ByteCopy.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/PlatformError.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;

void copyFile(const fs::path& source, const fs::path& destination) {
    if (hasNul(source) || hasNul(destination)) {
        throw PlatformError(std::make_error_code(std::errc::invalid_argument), source, "copied");
    }
    const FileHandle from(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat facts {};
    if (from.descriptor() < 0 || ::fstat(from.descriptor(), &facts) != 0) {
        throw PlatformError::fromErrno(source, "copied");
    }
    if (!S_ISREG(facts.st_mode)) {
        throw PlatformError(std::make_error_code(std::errc::not_supported), source, "copied");
    }
    const FileHandle to(::open(destination.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (to.descriptor() < 0) {
        throw PlatformError::fromErrno(source, "copied");
    }
    if (::fchmod(to.descriptor(), facts.st_mode & 0777U) != 0 || !copyBytes(from, to)) {
        const PlatformError error = PlatformError::fromErrno(source, "copied");
        (void)::unlink(destination.c_str());
        throw error;
    }
}

} // namespace quorvel

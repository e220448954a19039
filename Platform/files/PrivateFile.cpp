#include "Platform/files/PrivateFile.h"

#include "Base/PathText.h"
#include "Platform/files/FileReading.h"

#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {

std::optional<std::string> readPrivateFile(const std::string& path, std::size_t limit) {
    struct stat status {};
    const bool isPrivate = !hasNul(path) && ::lstat(path.c_str(), &status) == 0 &&
                           S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
                           (status.st_mode & 0077U) == 0;
    return isPrivate ? readFile(path, limit) : std::nullopt;
}

} // namespace quorvel

#include "Platform/removal/ItemProtection.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace quorvel {

bool isProtected(int folder, const char* name) {
    struct stat status {};
    return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           (status.st_flags & (UF_IMMUTABLE | SF_IMMUTABLE | UF_APPEND | SF_APPEND)) != 0;
}

} // namespace quorvel

#include "Platform/removal/ItemProtection.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace quorvel {

bool isProtected(int folder, const char* name) {
    struct statx status {};
    return ::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, 0, &status) == 0 &&
           (status.stx_attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0;
}

} // namespace quorvel

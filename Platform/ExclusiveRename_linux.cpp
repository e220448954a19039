#include "Platform/ExclusiveRename.h"

#include <cstdio>
#include <fcntl.h>

namespace quorvel {

int renameToNewName(const char* source, const char* destination) {
    return ::renameat2(AT_FDCWD, source, AT_FDCWD, destination, RENAME_NOREPLACE);
}

} // namespace quorvel

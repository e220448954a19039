#include "Platform/ExclusiveRename.h"

#include <cstdio>

namespace quorvel {

int renameToNewName(const char* source, const char* destination) {
    return ::renamex_np(source, destination, RENAME_EXCL);
}

} // namespace quorvel

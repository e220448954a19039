#include "Platform/files/ExclusiveRename.h"

#include <cstdio>
#include <fcntl.h>

namespace quorvel {

int renameExclusively(const std::filesystem::path& source,
                      const std::filesystem::path& destination) {
    return ::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, destination.c_str(), RENAME_NOREPLACE);
}

} // namespace quorvel

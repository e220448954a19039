#include "Platform/files/ExclusiveRename.h"

#include <cstdio>

namespace quorvel {

int renameExclusively(const std::filesystem::path& source,
                      const std::filesystem::path& destination) {
    return ::renamex_np(source.c_str(), destination.c_str(), RENAME_EXCL);
}

} // namespace quorvel

#include "Platform/staging/ExclusiveRename.h"

#include <cstdio>
#include <fcntl.h>

namespace quorvel {

int renameExclusively(const std::filesystem::path& source,
                      const std::filesystem::path& destination) {
    return renameExclusivelyAt(AT_FDCWD, source.c_str(), AT_FDCWD, destination.c_str());
}

int renameExclusivelyAt(int sourceFolder, const char* source, int destinationFolder,
                        const char* destination) {
    return ::renameat2(sourceFolder, source, destinationFolder, destination, RENAME_NOREPLACE);
}

int exchangeItems(int folder, const char* name, int otherFolder, const char* otherName) {
    return ::renameat2(folder, name, otherFolder, otherName, RENAME_EXCHANGE);
}

} // namespace quorvel

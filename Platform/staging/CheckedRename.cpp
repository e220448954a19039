#include "Platform/staging/CheckedRename.h"

#include "Platform/files/UnsupportedOperation.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace quorvel {

int orRenameChecked(int result, int folder, const char* name, int newFolder, const char* newName) {
    if (result == 0 || !meansNoSuchRename(errno)) {
        return result;
    }
    struct stat status {};
    if (::fstatat(newFolder, newName, &status, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return -1;
    }
    return ::renameat(folder, name, newFolder, newName);
}

} // namespace quorvel

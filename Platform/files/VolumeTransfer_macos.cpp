#include "Platform/files/VolumeTransfer.h"

#include <copyfile.h>
#include <unistd.h>

namespace quorvel::VolumeTransfer {

std::array<timespec, 2> datesIn(const struct stat& status) {
    return {status.st_atimespec, status.st_mtimespec};
}

timespec changeIn(const struct stat& status) {
    return status.st_ctimespec;
}

bool copyExtendedAttributes(int from, int to) {
    return ::fcopyfile(from, to, nullptr, COPYFILE_XATTR | COPYFILE_ACL) == 0;
}

bool flushFileSystem(int /*descriptor*/) {
    ::sync();
    return true;
}

} // namespace quorvel::VolumeTransfer

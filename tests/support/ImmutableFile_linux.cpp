#include "tests/support/ImmutableFile.h"

#include "Platform/files/FileHandle.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

namespace quorvel::testing {
namespace {

bool setImmutable(const FileHandle& file, bool immutable) {
    int flags = 0;
    if (::ioctl(file.descriptor(), FS_IOC_GETFLAGS, &flags) != 0) {
        return false;
    }
    flags = immutable ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    return ::ioctl(file.descriptor(), FS_IOC_SETFLAGS, &flags) == 0;
}

} // namespace

ImmutableFile::ImmutableFile(const std::filesystem::path& file)
    : file_(::open(file.c_str(), O_RDONLY | O_CLOEXEC)),
      isSet_(setImmutable(file_, true)) {}

ImmutableFile::~ImmutableFile() {
    if (isSet_) {
        setImmutable(file_, false);
    }
}

} // namespace quorvel::testing

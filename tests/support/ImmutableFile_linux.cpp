#include "tests/support/ImmutableFile.h"

#include "Platform/files/FileHandle.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

namespace quorvel::testing {
namespace {

bool setImmutable(const std::filesystem::path& file, bool immutable) {
    const FileHandle handle(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    int flags = 0;
    if (::ioctl(handle.descriptor(), FS_IOC_GETFLAGS, &flags) != 0) {
        return false;
    }
    flags = immutable ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    return ::ioctl(handle.descriptor(), FS_IOC_SETFLAGS, &flags) == 0;
}

} // namespace

ImmutableFile::ImmutableFile(std::filesystem::path file)
    : file_(std::move(file)),
      isSet_(setImmutable(file_, true)) {}

ImmutableFile::~ImmutableFile() {
    if (isSet_) {
        setImmutable(file_, false);
    }
}

} // namespace quorvel::testing

#include "Platform/files/MountBoundary.h"

#include "Platform/files/FileHandle.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

// macOS has no bind mounts, so every mount is another device.
namespace quorvel {

int openFolderForNames(const std::filesystem::path& path) {
    return ::open(path.c_str(), O_SEARCH | O_CLOEXEC);
}

std::optional<Mount> mountOf(int descriptor) {
    struct stat facts {};
    if (::fstat(descriptor, &facts) != 0) {
        return std::nullopt;
    }
    return Mount{.id = static_cast<std::uint64_t>(facts.st_dev), .isDevice = true};
}

std::optional<Mount> mountOf(int folder, const char* name) {
    struct stat facts {};
    if (::fstatat(folder, name, &facts, AT_SYMLINK_NOFOLLOW) != 0) {
        return std::nullopt;
    }
    return Mount{.id = static_cast<std::uint64_t>(facts.st_dev), .isDevice = true};
}

namespace {

constexpr int fileFlags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

int openOnMount(int folder, const char* name, int flags, const Mount& mount) {
    FileHandle opened(::openat(folder, name, flags));
    if (opened.descriptor() >= 0 && mountOf(opened.descriptor()) != mount) {
        errno = EXDEV;
        return -1;
    }
    return opened.release();
}

} // namespace

int openFolderOnMount(int folder, const char* name, const Mount& mount) {
    return openOnMount(folder, name, fileFlags | O_DIRECTORY, mount);
}

int openFileOnMount(int folder, const char* name, const Mount& mount) {
    return openOnMount(folder, name, fileFlags, mount);
}

} // namespace quorvel

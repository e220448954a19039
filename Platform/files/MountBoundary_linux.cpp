#include "Platform/files/MountBoundary.h"

#include "Platform/files/FileHandle.h"
#include "Platform/files/FileReading.h"

#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <linux/openat2.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quorvel {
namespace {

constexpr int fileFlags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;

// Before Linux 5.8, the mount id of an open item is available only here.
std::optional<std::uint64_t> mountIdInProc(int descriptor) {
    constexpr std::size_t limit = 65536;
    constexpr std::string_view key = "mnt_id:";
    const auto facts = readFile("/proc/self/fdinfo/" + std::to_string(descriptor), limit);
    const std::size_t start = facts ? facts->find(key) : std::string::npos;
    if (start == std::string::npos) {
        return std::nullopt;
    }
    const char* digits = facts->data() + facts->find_first_not_of(" \t", start + key.size());
    std::uint64_t id = 0;
    const auto parsed = std::from_chars(digits, facts->data() + facts->size(), id);
    return parsed.ec == std::errc() ? std::optional(id) : std::nullopt;
}

std::optional<Mount> mountFrom(const struct statx& status) {
    if ((status.stx_mask & STATX_MNT_ID) != 0) {
        return Mount{.id = status.stx_mnt_id};
    }
    return std::nullopt;
}

} // namespace

int openFolderForNames(const std::filesystem::path& path) {
    return ::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
}

std::optional<Mount> mountOf(int descriptor) {
    struct statx status {};
    if (::statx(descriptor, "", AT_EMPTY_PATH | AT_NO_AUTOMOUNT, STATX_MNT_ID, &status) == 0) {
        if (const auto mount = mountFrom(status)) {
            return mount;
        }
    }
    if (const auto id = mountIdInProc(descriptor)) {
        return Mount{.id = *id};
    }
    struct stat facts {};
    if (::fstat(descriptor, &facts) != 0) {
        return std::nullopt;
    }
    return Mount{.id = facts.st_dev, .isDevice = true};
}

std::optional<Mount> mountOf(int folder, const char* name) {
    struct statx status {};
    if (::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_MNT_ID, &status) == 0) {
        if (const auto mount = mountFrom(status)) {
            return mount;
        }
    }
    const FileHandle item(::openat(folder, name, O_PATH | O_NOFOLLOW | O_CLOEXEC));
    return item.descriptor() < 0 ? std::nullopt : mountOf(item.descriptor());
}

namespace {

int openOnMount(int folder, const char* name, int flags, const Mount& mount) {
    open_how how{};
    how.flags = static_cast<std::uint64_t>(flags);
    how.resolve = RESOLVE_NO_XDEV | RESOLVE_NO_SYMLINKS;
    const auto opened = static_cast<int>(::syscall(SYS_openat2, folder, name, &how, sizeof how));
    // Older kernels lack the call, and containers may forbid it.
    if (opened >= 0 || (errno != ENOSYS && errno != EPERM)) {
        return opened;
    }
    FileHandle handle(::openat(folder, name, flags));
    if (handle.descriptor() >= 0 && mountOf(handle.descriptor()) != mount) {
        errno = EXDEV;
        return -1;
    }
    return handle.release();
}

} // namespace

int openFolderOnMount(int folder, const char* name, const Mount& mount) {
    return openOnMount(folder, name, folderFlags, mount);
}

int openFileOnMount(int folder, const char* name, const Mount& mount) {
    return openOnMount(folder, name, fileFlags, mount);
}

} // namespace quorvel

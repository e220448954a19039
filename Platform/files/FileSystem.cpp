#include "Platform/files/FileSystem.h"

#include "Base/PathText.h"
#include "Platform/files/Folder.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/RegularFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// An unwanted log is often a link to /dev/null.
std::optional<FileHandle> openCharacterDevice(const fs::path& path) {
    constexpr int flags = O_WRONLY | O_APPEND;
    struct stat status {};
    if (hasNul(path) || ::stat(path.c_str(), &status) != 0 || !S_ISCHR(status.st_mode)) {
        return std::nullopt;
    }
    FileHandle device(::open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    // Later writes should wait as usual.
    if (device.descriptor() < 0 || ::fstat(device.descriptor(), &status) != 0 ||
        !S_ISCHR(status.st_mode) || ::fcntl(device.descriptor(), F_SETFL, flags) != 0) {
        return std::nullopt;
    }
    return device;
}

} // namespace

bool itemExists(const fs::path& path) noexcept {
    struct stat status {};
    return !hasNul(path) && ::stat(path.c_str(), &status) == 0;
}

bool itemOrLinkExists(const fs::path& path) noexcept {
    struct stat status {};
    return !hasNul(path) && ::lstat(path.c_str(), &status) == 0;
}

bool isSymbolicLink(const fs::path& path) noexcept {
    struct stat status {};
    return !hasNul(path) && ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool isSameItem(const fs::path& a, const fs::path& b) noexcept {
    const auto first = identityOfTarget(a);
    return first && first == identityOfTarget(b);
}

bool isExecutableFile(const fs::path& path) noexcept {
    struct stat status {};
    return !hasNul(path) && ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

std::optional<std::vector<std::string>> directoryEntries(const fs::path& folder) {
    std::optional<Folder> open = Folder::open(folder);
    return open ? std::optional(open->entries()) : std::nullopt;
}

void createDirectories(const fs::path& folder) {
    std::error_code code;
    if (hasNul(folder)) {
        code = std::make_error_code(std::errc::invalid_argument);
    } else {
        // With a trailing slash, the last component would be empty, which counts as not created.
        fs::create_directories(withoutTrailingSlashes(folder), code);
    }
    if (!code && !fs::is_directory(folder, code) && !code) {
        code = std::make_error_code(std::errc::not_a_directory);
    }
    if (code) {
        throw PlatformError(code, folder, "created");
    }
}

void createPrivateFolder(const fs::path& folder) {
    if (hasNul(folder)) {
        errno = EINVAL;
    } else if (::mkdir(folder.c_str(), 0700) == 0) {
        return;
    }
    throw PlatformError::fromErrno(folder, "created");
}

std::optional<FileHandle> openForAppending(const fs::path& path) {
    RegularFile file = openRegularFile(path, O_WRONLY | O_APPEND | O_CREAT, 0666);
    return file.isOpen() ? std::optional(std::move(file.handle)) : openCharacterDevice(path);
}

} // namespace quorvel

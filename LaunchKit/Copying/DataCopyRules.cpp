#include "LaunchKit/Copying/DataCopyRules.h"

#include "Base/CloneLayout.h"
#include "Base/WebCloneLayout.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FolderWalk.h"
#include "Platform/files/RegularFile.h"
#include "Platform/files/VolumeTransfer.h"
#include "Platform/processes/ProcessFamily.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view firefoxLink = "lock";
constexpr std::string_view firefoxFile = ".parentlock";
constexpr std::string_view chromiumLink = "SingletonLock";

// Anywhere in a data folder, of any type.
constexpr std::array<std::string_view, 4> alwaysLocks{chromiumLink, "SingletonSocket",
                                                      "SingletonCookie", "DevToolsActivePort"};
// Only as files.
constexpr std::array<std::string_view, 4> fileLocks{firefoxFile, ".lock", ".ICEauthority",
                                                    ".Xauthority"};
// Only as links: Electron's socket.
constexpr std::string_view electronSocket = "SS";

template<std::size_t count>
bool contains(const std::array<std::string_view, count>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The process that a lock names: "HOST-PID" of Chromium, "ADDRESS:+PID" of Firefox.
struct Holder {
    std::string host{};
    pid_t pid = 0;
};

std::optional<Holder> holderIn(const std::string& target, char separator) {
    const std::size_t end = target.rfind(separator);
    if (end == std::string::npos) {
        return std::nullopt;
    }
    std::string_view digits = std::string_view(target).substr(end + 1);
    if (digits.starts_with('+')) {
        digits.remove_prefix(1);
    }
    Holder holder{.host = target.substr(0, end)};
    const char* last = digits.data() + digits.size();
    const auto parsed = std::from_chars(digits.data(), last, holder.pid);
    return parsed.ec == std::errc() && parsed.ptr == last && holder.pid > 0
               ? std::optional(std::move(holder))
               : std::nullopt;
}

std::string hostName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

bool isLog(const std::string& path) {
    if (!path.starts_with(instanceLogName)) {
        return false;
    }
    const std::string_view end = std::string_view(path).substr(instanceLogName.size());
    return end.empty() || (end.size() == 2 && end.front() == '.' && end.back() >= '1' &&
                           end.back() <= '0' + logsSetAside);
}

// The index that SQLite keeps beside a database while it is open.
bool isSharedMemory(const CopiedItem& item) {
    constexpr std::string_view end = "-shm";
    return item.name.size() > end.size() && item.name.ends_with(end) &&
           std::find(item.siblings.begin(), item.siblings.end(),
                     item.name.substr(0, item.name.size() - end.size())) != item.siblings.end();
}

bool isHeldHere(int folder, const char* name, char separator) {
    const auto holder = holderIn(linkTargetIn(folder, name).value_or(""), separator);
    struct stat facts {};
    if (!holder || ::fstatat(folder, name, &facts, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    // Firefox writes the address that the computer's name leads to.
    const bool isHere = separator == ':' || holder->host == hostName();
    return isHere && isRunningSince(holder->pid, VolumeTransfer::datesIn(facts)[1].tv_sec);
}

bool isLockedFile(int folder, const char* name) {
    const RegularFile file = openRegularFile(name, O_RDONLY | O_NOFOLLOW, 0, folder);
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return file.isOpen() && ::fcntl(file.descriptor(), F_GETLK, &lock) == 0 &&
           lock.l_type != F_UNLCK;
}

bool isInUse(int folder, const char* name) {
    return (name == chromiumLink && isHeldHere(folder, name, '-')) ||
           (name == firefoxLink && isHeldHere(folder, name, ':')) ||
           (name == firefoxFile && isLockedFile(folder, name));
}

} // namespace

bool staysBehind(const CopiedItem& item) {
    if (item.path == homeLockName || item.path == copiedMarkName || item.path == linkFolderName ||
        item.path == webStoreName || isLog(item.path) ||
        (contains(alwaysLocks, item.name) && !S_ISDIR(item.facts.st_mode))) {
        return true;
    }
    if (S_ISREG(item.facts.st_mode)) {
        return contains(fileLocks, item.name) || isSharedMemory(item);
    }
    if (!S_ISLNK(item.facts.st_mode)) {
        return false;
    }
    // Other programs have files of that name.
    return item.name == electronSocket ||
           (item.name == firefoxLink &&
            holderIn(linkTargetIn(item.folder, item.name.c_str()).value_or(""), ':').has_value());
}

std::optional<std::string> lockInUse(const fs::path& folder) {
    const FileHandle root(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    const auto mount = root.descriptor() < 0 ? std::nullopt : mountOf(root.descriptor());
    if (!mount) {
        return std::nullopt;
    }
    FolderWalk walk(root.descriptor(), *mount);
    while (const auto step = walk.next()) {
        if (step->kind == FolderWalk::Kind::item && isInUse(step->folder, step->name)) {
            return walk.path();
        }
    }
    return std::nullopt;
}

} // namespace quorvel

#include "LaunchKit/Launching/LogRotation.h"

#include "Base/CloneLayout.h"
#include "Base/PathText.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/ItemIdentity.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

std::string numbered(const std::string& log, int number) {
    return number == 0 ? log : log + "." + std::to_string(number);
}

// A folder must not be replaced, nor given a log's name.
bool isPlainFileOrNothing(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode);
}

void shift(const std::string& log) {
    for (int number = 0; number <= logsSetAside; ++number) {
        if (!isPlainFileOrNothing(numbered(log, number))) {
            return;
        }
    }
    for (int number = logsSetAside; number > 0; --number) {
        // The next one would take the place of what couldn't be moved.
        if (std::rename(numbered(log, number - 1).c_str(), numbered(log, number).c_str()) != 0 &&
            errno != ENOENT) {
            return;
        }
    }
}

} // namespace

void setAsideLargeLog(const std::string& home) noexcept {
    try {
        const std::string log = joinAsText(home, instanceLogName);
        struct stat status {};
        if (::lstat(log.c_str(), &status) != 0 || !S_ISREG(status.st_mode) ||
            static_cast<std::uintmax_t>(status.st_size) <= largestLog) {
            return;
        }
        // Of several starts at once, the first does it; a later one finds another file.
        const FileHandle file(
            ::open(log.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
        if (file.descriptor() >= 0 && ::flock(file.descriptor(), LOCK_EX | LOCK_NB) == 0 &&
            ::fstat(file.descriptor(), &status) == 0 && identityOf(log) == identityOf(status) &&
            static_cast<std::uintmax_t>(status.st_size) > largestLog) {
            shift(log);
        }
    } catch (const std::exception&) {
        return; // a clone with a large log is better than none
    }
}

} // namespace quorvel

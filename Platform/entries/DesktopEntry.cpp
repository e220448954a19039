#include "Platform/entries/DesktopEntry.h"

#include "Base/PathText.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/PlatformError.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

bool contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

PlatformError whyUnreadable(const fs::path& file) {
    struct stat status {};
    if (hasNul(file)) {
        return PlatformError::because("its path contains a NUL byte", file, "read");
    }
    if (::stat(file.c_str(), &status) != 0 ||
        (S_ISREG(status.st_mode) && ::access(file.c_str(), R_OK) != 0)) {
        return PlatformError::fromErrno(file, "read");
    }
    return PlatformError::because(S_ISREG(status.st_mode) ? "it is larger than 1 MiB"
                                                          : "it is not a regular file",
                                  file, "read");
}

} // namespace

bool DesktopEntry::isShownIn(const std::vector<std::string>& desktops) const {
    // The first desktop that one of the lists names decides, so that a desktop may build on
    // another.
    for (const std::string& desktop : desktops) {
        if (contains(onlyShowIn, desktop)) {
            return true;
        }
        if (contains(notShowIn, desktop)) {
            return false;
        }
    }
    return onlyShowIn.empty();
}

DesktopEntry readDesktopEntry(const fs::path& file) {
    const auto bytes = readFile(file.native(), maxDesktopEntrySize);
    if (!bytes) {
        throw whyUnreadable(file);
    }
    try {
        return parseDesktopEntry(*bytes, desktopEntryLanguages());
    } catch (const DesktopEntryError& error) {
        throw PlatformError::because(error.description(), file, "read");
    }
}

} // namespace quorvel

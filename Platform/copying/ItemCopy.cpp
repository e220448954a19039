#include "Platform/copying/ItemCopy.h"

#include "Platform/files/FileReading.h"
#include "Platform/files/ItemAttributes.h"
#include "Platform/files/VolumeTransfer.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <tuple>
#include <unistd.h>

namespace quorvel {

FileHandle createFileIn(int folder, const char* name) {
    return FileHandle(::openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
}

bool copyAttributesAndDates(int original, int copy, const struct stat& facts) {
    return copyAttributes(original, copy, facts) &&
           ::futimens(copy, VolumeTransfer::datesIn(facts).data()) == 0;
}

std::optional<std::string> copyLinkIn(int from, int to, const char* name,
                                      const struct stat& facts) {
    auto target = linkTargetIn(from, name);
    if (!target || ::symlinkat(target->c_str(), to, name) != 0 ||
        ::utimensat(to, name, VolumeTransfer::datesIn(facts).data(), AT_SYMLINK_NOFOLLOW) != 0) {
        return std::nullopt;
    }
    std::ignore = ::fchownat(to, name, facts.st_uid, facts.st_gid, AT_SYMLINK_NOFOLLOW);
    return target;
}

bool isSameDate(const timespec& one, const timespec& other) {
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

PlatformError copyFailure(int error, const std::filesystem::path& inside,
                          const std::filesystem::path& item, const std::string& action) {
    const std::filesystem::path below = inside == "." ? std::filesystem::path() : inside;
    const std::string where = below.empty() ? "" : "“" + below.string() + "” ";
    // The system's messages for these two would be misleading.
    if (error == EXDEV) {
        return PlatformError::because(where + "is on another file system", item, action);
    }
    if (error == EBUSY) {
        return PlatformError::because(where + "changed while it was copied", item, action);
    }
    return PlatformError::inside(std::error_code(error, std::generic_category()), below, item,
                                 action);
}

} // namespace quorvel

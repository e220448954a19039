#include "Platform/copying/TreeComparison.h"

#include "Platform/files/Folder.h"
#include "Platform/files/VolumeTransfer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fcntl.h>
#include <sys/stat.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// File systems round dates down, some to two seconds.
bool isDateOfCopy(const timespec& copy, const timespec& original) {
    constexpr std::int64_t second = 1'000'000'000;
    constexpr std::array<std::int64_t, 7> steps{1,          100,    1000,      1'000'000,
                                                10'000'000, second, 2 * second};
    const std::int64_t written = original.tv_sec * second + original.tv_nsec;
    const std::int64_t kept = copy.tv_sec * second + copy.tv_nsec;
    return std::any_of(steps.begin(), steps.end(),
                       [&](std::int64_t step) { return written - written % step == kept; });
}

bool isSame(const struct stat& original, const struct stat& copy) {
    return (original.st_mode & S_IFMT) == (copy.st_mode & S_IFMT) &&
           (S_ISDIR(original.st_mode) || original.st_size == copy.st_size) &&
           isDateOfCopy(VolumeTransfer::datesIn(copy)[1], VolumeTransfer::datesIn(original)[1]);
}

std::optional<Folder> openFolder(int folder, const std::string& name) {
    return Folder::owning(
        ::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

std::optional<fs::path> change(int originals, int copies, const std::string& name,
                               const fs::path& path) {
    struct stat original {};
    struct stat copy {};
    if (::fstatat(originals, name.c_str(), &original, AT_SYMLINK_NOFOLLOW) != 0 ||
        ::fstatat(copies, name.c_str(), &copy, AT_SYMLINK_NOFOLLOW) != 0) {
        return path;
    }
    if (S_ISDIR(original.st_mode) && S_ISDIR(copy.st_mode)) {
        std::optional<Folder> from = openFolder(originals, name);
        const std::optional<Folder> to = openFolder(copies, name);
        if (!from || !to) {
            return path;
        }
        for (const std::string& entry : from->entries()) {
            if (auto found = change(from->descriptor(), to->descriptor(), entry, path / entry)) {
                return found;
            }
        }
    }
    return isSame(original, copy) ? std::nullopt : std::optional(path);
}

} // namespace

std::optional<fs::path> changeSinceCopy(int originals, int copies, const std::string& name) {
    return change(originals, copies, name, name);
}

} // namespace quorvel

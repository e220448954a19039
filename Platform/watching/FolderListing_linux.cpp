#include "Platform/watching/FolderListing_linux.h"

#include "Platform/files/FileHandle.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace {

template<typename Stamp, typename Other>
bool isLater(const Stamp& stamp, const Other& moment) {
    return stamp.tv_sec > moment.tv_sec ||
           (stamp.tv_sec == moment.tv_sec &&
            static_cast<long>(stamp.tv_nsec) > static_cast<long>(moment.tv_nsec));
}

bool isFolder(int folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN) {
        return entry.d_type == DT_DIR;
    }
    struct stat status {};
    return ::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(status.st_mode);
}

} // namespace

// File systems use a clock that ticks only a few hundred times per second.
ChangeClock ChangeClock::start() {
    timespec moment{};
    ::clock_gettime(CLOCK_REALTIME, &moment);
    timespec stamp{};
    constexpr timespec pause{0, 1'000'000};
    constexpr int longestTick = 20;
    for (int waited = 0; waited < longestTick; ++waited) {
        ::clock_gettime(CLOCK_REALTIME_COARSE, &stamp);
        if (isLater(stamp, moment)) {
            break;
        }
        ::nanosleep(&pause, nullptr);
    }
    return ChangeClock(moment);
}

std::optional<ItemHistory> ChangeClock::historyOf(const std::string& path) const {
    struct statx status {};
    if (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW | AT_STATX_SYNC_AS_STAT,
                STATX_BASIC_STATS | STATX_BTIME, &status) != 0) {
        return std::nullopt;
    }
    ItemHistory history;
    history.isDir = S_ISDIR(status.stx_mode);
    history.created = (status.stx_mask & STATX_BTIME) != 0 && isLater(status.stx_btime, moment_);
    // Creating a file also sets its modification time.
    history.modified =
        isLater(status.stx_mtime, moment_) && (!history.created || status.stx_size > 0);
    history.changed = history.modified || isLater(status.stx_ctime, moment_);
    return history;
}

std::optional<std::vector<FolderItem>> listFolder(const std::string& path, bool followsLink) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC |
                                                    (followsLink ? 0 : O_NOFOLLOW));
    if (descriptor < 0) {
        return std::nullopt;
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::fdopendir(descriptor), &::closedir);
    if (!folder) {
        ::close(descriptor);
        return std::nullopt;
    }
    std::vector<FolderItem> items;
    while (const dirent* entry = ::readdir(folder.get())) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            items.push_back({entry->d_name, isFolder(descriptor, *entry)});
        }
    }
    return items;
}

} // namespace quorvel

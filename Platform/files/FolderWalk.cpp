#include "Platform/files/FolderWalk.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quorvel {
namespace {

constexpr std::size_t openAtOnce = 32;

FileHandle duplicate(int descriptor) {
    return FileHandle(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
}

} // namespace

FolderWalk::FolderWalk(int root, const Mount& mount) : mount_(mount) {
    FileHandle folder = duplicate(root);
    rootError_ = folder.descriptor() < 0 ? errno : push({}, std::move(folder));
}

int FolderWalk::list(int folder, std::vector<Entry>& entries) {
    FileHandle listed = duplicate(folder);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(
        listed.descriptor() < 0 ? nullptr : ::fdopendir(listed.descriptor()), &::closedir);
    if (!stream) {
        return errno;
    }
    (void)listed.release();
    ::rewinddir(stream.get());
    while (true) {
        errno = 0; // readdir() leaves it unchanged at the end
        const dirent* entry = ::readdir(stream.get());
        if (entry == nullptr) {
            return errno;
        }
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            entries.push_back(
                {std::string(name), entry->d_type == DT_DIR || entry->d_type == DT_UNKNOWN});
        }
    }
}

int FolderWalk::push(std::string name, FileHandle folder) {
    Level level;
    level.name = std::move(name);
    struct stat status {};
    if (::fstat(folder.descriptor(), &status) != 0) {
        return errno;
    }
    level.identity = identityOf(status);
    // Listed completely, because reading on after a removal is unspecified.
    if (const int error = list(folder.descriptor(), level.entries)) {
        return error;
    }
    level.folder = std::move(folder);
    levels_.push_back(std::move(level));
    if (levels_.size() > openAtOnce + 1) {
        // The root stays open: it is never reopened through its parent.
        levels_[levels_.size() - 1 - openAtOnce].folder = FileHandle(-1);
    }
    return 0;
}

FolderWalk::Step FolderWalk::step(Kind kind, int error) const {
    return {kind, levels_.back().folder.descriptor(), name_.c_str(), error};
}

std::optional<FolderWalk::Step> FolderWalk::next() {
    if (levels_.empty()) {
        const int error = std::exchange(rootError_, 0);
        return error == 0 ? std::nullopt
                          : std::optional(Step{Kind::unreadable, -1, name_.c_str(), error});
    }
    while (true) {
        Level& level = levels_.back();
        if (level.next < level.entries.size()) {
            const Entry entry = std::move(level.entries[level.next++]);
            if (const auto found = enter(entry)) {
                return found;
            }
        } else if (levels_.size() > 1) {
            return leave();
        } else {
            return std::nullopt;
        }
    }
}

std::optional<FolderWalk::Step> FolderWalk::enter(const Entry& entry) {
    name_ = entry.name;
    if (!entry.mayBeFolder) {
        return step(Kind::item);
    }
    FileHandle folder(openFolderOnMount(levels_.back().folder.descriptor(), name_.c_str(), mount_));
    if (folder.descriptor() >= 0) {
        const int error = push(name_, std::move(folder));
        return error == 0 ? std::nullopt : std::optional(step(Kind::unreadable, error));
    }
    switch (errno) {
    case ENOENT:
        return std::nullopt;
    case ENOTDIR:
    case ELOOP:
        return step(Kind::item);
    case EXDEV:
        return step(Kind::anotherMount, EXDEV);
    default:
        return step(Kind::unreadable, errno);
    }
}

FolderWalk::Step FolderWalk::leave() {
    const Level left = std::move(levels_.back());
    levels_.pop_back();
    name_ = left.name;
    Level& above = levels_.back();
    if (above.folder.descriptor() < 0 && !reopen(left.folder.descriptor())) {
        above.next = above.entries.size();
        return step(Kind::unreadable, ESTALE);
    }
    return step(Kind::folderLeft);
}

bool FolderWalk::reopen(int below) {
    Level& level = levels_.back();
    FileHandle folder(
        below < 0 ? -1 : ::openat(below, "..", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    // The folder below may have been moved elsewhere.
    if (folder.descriptor() < 0 || ::fstat(folder.descriptor(), &status) != 0 ||
        identityOf(status) != level.identity || mountOf(folder.descriptor()) != mount_) {
        return false;
    }
    level.folder = std::move(folder);
    return true;
}

std::string FolderWalk::path() const {
    std::string path;
    for (const Level& level : levels_) {
        if (!level.name.empty()) {
            path.append(level.name).append(1, '/');
        }
    }
    return path + name_;
}

} // namespace quorvel

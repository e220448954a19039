#include "Platform/copying/TreeCopy.h"

#include "Platform/copying/ByteCopy.h"
#include "Platform/copying/ItemCopy.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/Folder.h"
#include "Platform/files/ItemAttributes.h"
#include "Platform/files/VolumeTransfer.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// O_NONBLOCK, because a file may have been replaced by a FIFO.
constexpr int reading = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

bool isUnchanged(int descriptor, const struct stat& before) {
    struct stat now {};
    if (::fstat(descriptor, &now) != 0) {
        return false;
    }
    const auto then = VolumeTransfer::datesIn(before)[1];
    const auto date = VolumeTransfer::datesIn(now)[1];
    errno = EBUSY;
    return identityOf(now) == identityOf(before) && now.st_size == before.st_size &&
           isSameDate(date, then);
}

} // namespace

void TreeCopy::copy(int from, int to, const std::string& name, const fs::path& item) {
    item_ = item;
    root_ = to;
    linked_.clear();
    const Place place{.from = from, .to = to, .name = name, .inside = name};
    const std::optional<Mount> mount = mountOf(from);
    if (!mount) {
        fail(place, errno);
    }
    mount_ = *mount;
    copyItem(place);
}

void TreeCopy::movedTo(const fs::path& path) {
    for (auto& [identity, file] : linked_) {
        if (file.missing > 0) {
            const fs::path inside = file.copy.lexically_relative(*file.copy.begin());
            file.copy = inside == "." ? path : path / inside;
            earlier_.insert_or_assign(identity, std::move(file));
        }
    }
    linked_.clear();
}

void TreeCopy::fail(const Place& place, int error) const {
    throw copyFailure(error, place.inside.lexically_relative(*place.inside.begin()), item_,
                      "moved");
}

void TreeCopy::copyItem(const Place& place) {
    struct stat facts {};
    if (::fstatat(place.from, place.name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0) {
        fail(place, errno);
    }
    if (mountOf(place.from, place.name.c_str()) != mount_) {
        fail(place, EXDEV);
    }
    if (S_ISDIR(facts.st_mode)) {
        copyFolder(place, facts);
    } else if (!linkToCopy(place, facts)) {
        if (S_ISREG(facts.st_mode)) {
            copyFile(place, facts);
        } else if (S_ISLNK(facts.st_mode)) {
            copyLink(place, facts);
        } else {
            copyNode(place, facts);
        }
    }
}

void TreeCopy::copyFolder(const Place& place, const struct stat& facts) {
    std::optional<Folder> from =
        Folder::owning(openFolderOnMount(place.from, place.name.c_str(), mount_));
    if (!from || !isUnchanged(from->descriptor(), facts) ||
        ::mkdirat(place.to, place.name.c_str(), 0700) != 0) {
        fail(place, errno);
    }
    const FileHandle to(::openat(place.to, place.name.c_str(), reading | O_DIRECTORY));
    if (to.descriptor() < 0) {
        fail(place, errno);
    }
    const std::vector<std::string> names = from->entries();
    for (const std::string& name : names) {
        copyItem({.from = from->descriptor(),
                  .to = to.descriptor(),
                  .name = name,
                  .inside = place.inside / name});
    }
    // The original could not be removed afterwards.
    const bool emptied =
        names.empty() || ::faccessat(from->descriptor(), ".", W_OK | X_OK, AT_EACCESS) == 0;
    if (!emptied || !isUnchanged(from->descriptor(), facts) ||
        !copyAttributesAndDates(from->descriptor(), to.descriptor(), facts)) {
        fail(place, errno);
    }
}

void TreeCopy::copyFile(const Place& place, const struct stat& facts) {
    const FileHandle from(::openat(place.from, place.name.c_str(), reading));
    if (from.descriptor() < 0 || !isUnchanged(from.descriptor(), facts)) {
        fail(place, errno);
    }
    const FileHandle to = createFileIn(place.to, place.name.c_str());
    if (to.descriptor() < 0 || !copyBytes(from, to) || !isUnchanged(from.descriptor(), facts) ||
        !copyAttributesAndDates(from.descriptor(), to.descriptor(), facts)) {
        fail(place, errno);
    }
    remember(place, facts, to.descriptor());
}

void TreeCopy::copyLink(const Place& place, const struct stat& facts) {
    if (!copyLinkIn(place.from, place.to, place.name.c_str(), facts)) {
        fail(place, errno);
    }
}

void TreeCopy::copyNode(const Place& place, const struct stat& facts) {
    const char* name = place.name.c_str();
    if (::mknodat(place.to, name, (facts.st_mode & S_IFMT) | S_IRUSR | S_IWUSR, facts.st_rdev) !=
        0) {
        fail(place, errno);
    }
    const bool sameOwner =
        ::fchownat(place.to, name, facts.st_uid, facts.st_gid, AT_SYMLINK_NOFOLLOW) == 0;
    if (::fchmodat(place.to, name, modeOfCopy(facts, sameOwner), 0) != 0 ||
        ::utimensat(place.to, name, VolumeTransfer::datesIn(facts).data(), AT_SYMLINK_NOFOLLOW) !=
            0) {
        fail(place, errno);
    }
}

// The inode number alone is not enough: it may have been reused after the file was removed.
bool TreeCopy::linkToCopy(const Place& place, const struct stat& facts) {
    const ItemIdentity identity = identityOf(facts);
    const auto here = linked_.find(identity);
    const auto before = earlier_.find(identity);
    if (here == linked_.end() && before == earlier_.end()) {
        return false;
    }
    LinkedFile& file = here != linked_.end() ? here->second : before->second;
    const int folder = here != linked_.end() ? root_ : AT_FDCWD;
    struct stat copy {};
    const auto date = VolumeTransfer::datesIn(facts)[1];
    if (file.missing == 0 || file.size != facts.st_size || !isSameDate(file.dates[1], date) ||
        ::fstatat(folder, file.copy.c_str(), &copy, AT_SYMLINK_NOFOLLOW) != 0 ||
        file.copied != identityOf(copy) ||
        ::linkat(folder, file.copy.c_str(), place.to, place.name.c_str(), 0) != 0) {
        return false;
    }
    --file.missing;
    return true;
}

void TreeCopy::remember(const Place& place, const struct stat& facts, int copy) {
    struct stat now {};
    if (facts.st_nlink < 2 || ::fstat(copy, &now) != 0) {
        return;
    }
    linked_[identityOf(facts)] = {.copy = place.inside,
                                  .copied = identityOf(now),
                                  .dates = VolumeTransfer::datesIn(facts),
                                  .size = facts.st_size,
                                  .missing = facts.st_nlink - 1};
}

} // namespace quorvel

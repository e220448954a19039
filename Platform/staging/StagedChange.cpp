#include "Platform/staging/StagedChange.h"

#include "Base/HiddenNames.h"
#include "Base/PathText.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/files/MountBoundary.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/UnsupportedOperation.h"
#include "Platform/removal/ItemRemoval.h"
#include "Platform/staging/CheckedRename.h"
#include "Platform/staging/FolderLock.h"
#include "Platform/staging/TreeFlush.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// What an item is called between two renames, and the file that says where it was.
constexpr const char* displaced = "displaced";
constexpr const char* displacedFrom = "displaced-from";

std::optional<ItemIdentity> identityIn(int folder, const std::string& name) {
    struct stat status {};
    return ::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0
               ? std::optional(identityOf(status))
               : std::nullopt;
}

bool isThere(int folder, const char* name) {
    return identityIn(folder, name).has_value();
}

int renameWhereFree(int from, const char* name, int to, const char* newName) {
    return orRenameChecked(renameExclusivelyAt(from, name, to, newName), from, name, to, newName);
}

} // namespace

StagedChange::StagedChange(const fs::path& folder, Exchange exchange)
    : folder_(folder),
      exchange_(std::move(exchange)),
      parent_(openFolderForNames(folder)) {
    if (parent_.descriptor() < 0) {
        throw PlatformError::fromErrno(folder, "changed");
    }
    // A cleanup may take the new folder for an abandoned one until it is locked.
    constexpr int attempts = 10;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const std::string name = newHiddenName(changeFolderPrefix);
        if (::mkdirat(parent_.descriptor(), name.c_str(), 0700) != 0) {
            throw PlatformError::fromErrno(folder, "changed");
        }
        if (open(name)) {
            return;
        }
    }
    throw PlatformError::fromErrno(folder, "changed");
}

StagedChange::~StagedChange() {
    if (hidden_.descriptor() < 0 || kept_) {
        return;
    }
    try {
        if (const auto removal = ItemRemoval::of(path_)) {
            (void)removal->remove();
        }
    } catch (const PlatformError&) {
        return; // the next cleanup tries again
    }
}

// Returns whether the hidden folder is open and locked.
bool StagedChange::open(const std::string& hidden) {
    // On a file system without locks, no one can hold one.
    hidden_ = lockedFolder(parent_.descriptor(), hidden.c_str(), WithoutLocks::isOurs);
    if (hidden_.descriptor() < 0) {
        return false;
    }
    path_ = joinAsText(folder_, hidden);
    return true;
}

bool StagedChange::flush() const {
    return flushFolder(hidden_.descriptor()) && flushFolder(parent_.descriptor());
}

bool StagedChange::writeNote(const char* name, std::string_view bytes) const {
    const FileHandle file(::openat(hidden_.descriptor(), name,
                                   O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
    return file.descriptor() >= 0 && file.write(bytes) && flushTree(hidden_.descriptor(), name) &&
           flush();
}

// Between the renames nothing is at `name`, so its name is noted first.
int StagedChange::replaceInTwoSteps(const char* staged, const char* name) const {
    const int hidden = hidden_.descriptor();
    const int parent = parent_.descriptor();
    if (!writeNote(displacedFrom, name) || ::renameat(parent, name, hidden, displaced) != 0) {
        return -1;
    }
    if (::renameat(hidden, staged, parent, name) != 0) {
        const int error = errno;
        putBackDisplaced();
        errno = error;
        return -1;
    }
    (void)::renameat(hidden, displaced, hidden, staged);
    (void)::unlinkat(hidden, displacedFrom, 0);
    return 0;
}

int StagedChange::moveTo(const char* staged, const char* name) const {
    const int hidden = hidden_.descriptor();
    const int parent = parent_.descriptor();
    if (renameWhereFree(hidden, staged, parent, name) == 0) {
        return 0;
    }
    if (errno != EEXIST) {
        return -1;
    }
    const int result = exchange_(hidden, staged, parent, name);
    return result == 0 || !meansNoSuchRename(errno) ? result : replaceInTwoSteps(staged, name);
}

void StagedChange::publish(const std::string& staged, const std::string& name) {
    const int hidden = hidden_.descriptor();
    if (!flushTree(hidden, staged.c_str()) || !flushFolder(hidden) ||
        moveTo(staged.c_str(), name.c_str()) != 0) {
        throw PlatformError::fromErrno(joinAsText(folder_, name), "written");
    }
    if (flush()) {
        return;
    }
    const PlatformError error = PlatformError::fromErrno(joinAsText(folder_, name), "written");
    // What may be lost in a power failure is taken back.
    if (isThere(hidden, staged.c_str())) {
        (void)moveTo(staged.c_str(), name.c_str());
    } else {
        (void)renameWhereFree(parent_.descriptor(), name.c_str(), hidden, staged.c_str());
    }
    throw PlatformError(error);
}

void StagedChange::moveDurably(const Move& move) const {
    const auto& [from, name, to, newName, action] = move;
    if (renameWhereFree(from, name.c_str(), to, newName.c_str()) == 0) {
        if (flush()) {
            return;
        }
        const int error = errno;
        (void)renameWhereFree(to, newName.c_str(), from, name.c_str());
        errno = error;
    }
    const std::string& shown = from == parent_.descriptor() ? name : newName;
    throw PlatformError::fromErrno(joinAsText(folder_, shown), action);
}

bool StagedChange::withdraw(const std::string& name, const std::string& staged,
                            const ItemIdentity& item) {
    const auto found = identityIn(parent_.descriptor(), name);
    if (found != item) {
        return false;
    }
    moveDurably({parent_.descriptor(), name, hidden_.descriptor(), staged, "removed"});
    if (identityIn(hidden_.descriptor(), staged) == item) {
        return true;
    }
    // Swapped in between. It must not be removed with the hidden folder.
    try {
        restore(staged, name);
    } catch (const PlatformError&) {
        keep();
        throw;
    }
    return false;
}

void StagedChange::restore(const std::string& staged, const std::string& name) {
    moveDurably({hidden_.descriptor(), staged, parent_.descriptor(), name, "put back"});
}

void StagedChange::rename(const std::string& from, const std::string& to) {
    moveDurably({parent_.descriptor(), from, parent_.descriptor(), to, "renamed"});
}

void StagedChange::note(const std::string& name, std::string_view bytes) {
    if (!writeNote(name.c_str(), bytes)) {
        throw PlatformError::fromErrno(folder_, "changed");
    }
}

std::optional<std::string> StagedChange::noted(const std::string& name) const {
    constexpr std::size_t limit = 65536;
    std::string bytes;
    return readFileIn(hidden_.descriptor(), name, limit, bytes) ? std::optional(std::move(bytes))
                                                                : std::nullopt;
}

void StagedChange::forget(const std::string& name) const {
    (void)::unlinkat(hidden_.descriptor(), name.c_str(), 0);
    (void)flush();
}

bool StagedChange::holds(const std::string& name) const {
    return isThere(hidden_.descriptor(), name.c_str());
}

std::optional<std::uint64_t> StagedChange::numberOf(const std::string& name) const {
    const auto identity = identityIn(parent_.descriptor(), name);
    return identity ? std::optional<std::uint64_t>(identity->inode) : std::nullopt;
}

void StagedChange::putBackDisplaced() const {
    if (const auto name = holds(displaced) ? noted(displacedFrom) : std::nullopt) {
        (void)renameWhereFree(hidden_.descriptor(), displaced, parent_.descriptor(), name->c_str());
    }
}

bool StagedChange::isHiddenFolder(std::string_view name) {
    return isHiddenName(name, changeFolderPrefix);
}

std::vector<StagedChange> StagedChange::interruptedIn(const fs::path& folder) {
    std::vector<StagedChange> found;
    for (const std::string& name : directoryEntries(folder).value_or(std::vector<std::string>())) {
        if (!isHiddenFolder(name)) {
            continue;
        }
        StagedChange change(folder, FileHandle(openFolderForNames(folder)));
        if (change.open(name)) {
            change.putBackDisplaced();
            found.push_back(std::move(change));
        }
    }
    return found;
}

} // namespace quorvel

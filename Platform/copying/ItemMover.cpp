#include "Platform/copying/ItemMover.h"

#include "Base/HiddenNames.h"
#include "Base/PathText.h"
#include "Base/RandomUuid.h"
#include "Platform/copying/ItemCopy.h"
#include "Platform/copying/TreeComparison.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/VolumeTransfer.h"
#include "Platform/removal/FileRemoval.h"
#include "Platform/staging/CheckedRename.h"
#include "Platform/staging/FolderLock.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

void makeFolder(const fs::path& folder, const fs::path& source) {
    if (::mkdir(folder.c_str(), 0700) != 0) {
        throw PlatformError::fromErrno(source, "moved");
    }
}

FileHandle openFolder(const fs::path& folder) {
    return FileHandle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

void removeIfThere(const fs::path& item) {
    if (itemOrLinkExists(item)) {
        removeItem(item);
    }
}

// Removes an incomplete copy, if possible.
void discard(const fs::path& item) {
    try {
        removeIfThere(item);
    } catch (const PlatformError&) {
        // The caller reports the failure that led here.
    }
}

// Returns the name of the only entry of a folder, or an empty name if there is none.
std::string onlyEntry(const fs::path& folder) {
    const auto names = directoryEntries(folder);
    if (!names) {
        throw PlatformError::fromErrno(folder, "moved");
    }
    return names->empty() ? std::string() : names->front();
}

// Returns the identifier in such a folder's name.
std::optional<std::string> idOf(std::string_view name) {
    for (const std::string_view prefix : {movingPrefix, movedPrefix}) {
        if (isHiddenName(name, prefix)) {
            return std::string(name.substr(prefix.size()));
        }
    }
    return std::nullopt;
}

// Returns where the original in `beside` differs from its copy in `staging`.
std::optional<fs::path> changeInside(const fs::path& beside, const fs::path& staging,
                                     const std::string& name) {
    return changeSinceCopy(openFolder(beside).descriptor(), openFolder(staging).descriptor(), name);
}

// A new name that is not on disk yet would be lost in a power failure.
void flush(const fs::path& folder) {
    const FileHandle opened = openFolder(folder);
    if (opened.descriptor() < 0 || !VolumeTransfer::flushFileSystem(opened.descriptor())) {
        throw PlatformError::fromErrno(folder, "flushed");
    }
}

// Removes the original, which is in `beside`, after renaming that folder to record that the copy is
// complete.
void removeOriginal(const fs::path& beside, const fs::path& staging, const fs::path& item) {
    const std::string id = idOf(beside.filename().string()).value();
    const fs::path moved = beside.parent_path() / std::string(movedPrefix).append(id);
    try {
        flush(staging.parent_path());
        if (beside != moved && ::rename(beside.c_str(), moved.c_str()) != 0) {
            throw PlatformError::fromErrno(beside, "renamed");
        }
        (void)::rmdir(staging.c_str());
        removeItem(moved);
    } catch (const PlatformError& error) {
        throw PlatformError::because("it was copied, but not all of the original can be removed: " +
                                         error.description(),
                                     item, "moved");
    }
}

} // namespace

ItemMover::ItemMover(ExclusiveRename exclusively) : exclusively_(std::move(exclusively)) {}

int ItemMover::renameWhereFree(const fs::path& source, const fs::path& destination) const {
    return orRenameChecked(exclusively_(source, destination), AT_FDCWD, source.c_str(), AT_FDCWD,
                           destination.c_str());
}

void ItemMover::move(const fs::path& source, const fs::path& destination) {
    if (hasNul(source) || hasNul(destination)) {
        throw PlatformError(std::make_error_code(std::errc::invalid_argument), source, "moved");
    }
    if (renameWhereFree(source, destination) == 0) {
        return;
    }
    if (errno != EXDEV) {
        throw PlatformError::fromErrno(source, "moved");
    }
    if (itemOrLinkExists(destination)) {
        throw PlatformError(std::make_error_code(std::errc::file_exists), source, "moved");
    }
    moveAcross(withoutTrailingSlashes(source), withoutTrailingSlashes(destination));
}

void ItemMover::moveAcross(const fs::path& source, const fs::path& destination) {
    const std::string name = source.filename().string();
    const std::string id = randomUuid();
    const fs::path beside = source.parent_path() / std::string(movingPrefix).append(id);
    const fs::path staging = destination.parent_path() / beside.filename();
    makeFolder(beside, source);
    const FileHandle held = openFolder(beside);
    (void)lockFolder(held, WithoutLocks::isOurs);
    try {
        makeFolder(staging, source);
        const FileHandle from = openFolder(source.parent_path());
        const FileHandle to = openFolder(staging);
        copy_.copy(from.descriptor(), to.descriptor(), name, source);
        if (!VolumeTransfer::flushFileSystem(to.descriptor()) ||
            renameWhereFree(source, beside / name) != 0) {
            throw PlatformError::fromErrno(source, "moved");
        }
    } catch (const PlatformError&) {
        discard(staging);
        (void)::rmdir(beside.c_str());
        throw;
    }
    const auto giveUp = [&](const PlatformError& error) {
        // If its name has been taken meanwhile, the copy is kept for `finish`.
        if (renameWhereFree(beside / name, source) == 0) {
            discard(staging);
            (void)::rmdir(beside.c_str());
        }
        throw error;
    };
    // The original can no longer be reached by its path, so it does not change any more.
    if (const auto changed = changeInside(beside, staging, name)) {
        giveUp(copyFailure(EBUSY, changed->lexically_relative(name), source, "moved"));
    }
    if (renameWhereFree(staging / name, destination) != 0) {
        giveUp(PlatformError::fromErrno(source, "moved"));
    }
    copy_.movedTo(destination);
    removeOriginal(beside, staging, source);
}

void ItemMover::putBack(const fs::path& leftover, const std::string& name,
                        const FreePath& freePath) const {
    if (renameWhereFree(leftover / name, freePath(leftover.parent_path() / name)) != 0) {
        throw PlatformError::fromErrno(leftover / name, "moved");
    }
}

bool ItemMover::isLeftover(const std::string& name) {
    return idOf(name).has_value();
}

bool ItemMover::finish(const fs::path& leftover, const fs::path& destination,
                       const FreePath& freePath) {
    const std::string folder = leftover.filename().string();
    const FileHandle held = openFolder(leftover);
    const auto id = idOf(folder);
    if (!id || held.descriptor() < 0) {
        throw PlatformError::fromErrno(leftover, "moved");
    }
    if (!lockFolder(held, WithoutLocks::isOurs)) {
        throw PlatformError::because("another program is moving it", leftover, "moved");
    }
    const fs::path staging = destination / std::string(movingPrefix).append(*id);
    const std::string name = onlyEntry(leftover);
    if (folder.starts_with(movedPrefix)) {
        removeOriginal(leftover, staging, leftover / name);
        return false;
    }
    if (name.empty()) {
        removeIfThere(staging);
        (void)::rmdir(leftover.c_str());
        return false;
    }
    const bool waiting = itemOrLinkExists(staging / name);
    if (waiting && changeInside(leftover, staging, name)) {
        putBack(leftover, name, freePath);
        removeIfThere(staging);
        (void)::rmdir(leftover.c_str());
        return false;
    }
    if (waiting && renameWhereFree(staging / name, freePath(destination / name)) != 0) {
        throw PlatformError::fromErrno(leftover / name, "moved");
    }
    if (waiting || itemOrLinkExists(staging)) {
        removeOriginal(leftover, staging, leftover / name);
        return waiting;
    }
    // Its copy is missing, so it is put back.
    putBack(leftover, name, freePath);
    (void)::rmdir(leftover.c_str());
    return false;
}

} // namespace quorvel

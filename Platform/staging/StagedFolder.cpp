#include "Platform/staging/StagedFolder.h"

#include "Base/HiddenNames.h"
#include "Base/PathText.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/files/MountBoundary.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/VolumeTransfer.h"
#include "Platform/removal/FileRemoval.h"
#include "Platform/staging/CheckedRename.h"
#include "Platform/staging/ExclusiveRename.h"
#include "Platform/staging/FolderLock.h"
#include "Platform/staging/TreeFlush.h"

#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

fs::path temporaryName(const fs::path& parent) {
    return joinAsText(parent, newHiddenName(copyingPrefix));
}

void removeQuietly(const fs::path& path) noexcept {
    try {
        removeItem(path);
    } catch (const std::exception&) {
        return; // the next one tries again
    }
}

} // namespace

StagedFolder::StagedFolder(fs::path destination) : destination_(std::move(destination)) {
    const fs::path parent = destination_.parent_path();
    createDirectories(parent);
    // Another program may take it for abandoned before it is locked.
    constexpr int attempts = 10;
    for (int attempt = 0; attempt < attempts && folder_.descriptor() < 0; ++attempt) {
        path_ = temporaryName(parent);
        createPrivateFolder(path_);
        folder_ = lockedFolder(AT_FDCWD, path_.c_str(), WithoutLocks::isOurs);
    }
    if (folder_.descriptor() < 0) {
        removeQuietly(path_);
        throw PlatformError::because("another program keeps removing it", path_, "opened");
    }
}

StagedFolder::~StagedFolder() {
    if (folder_.descriptor() >= 0 && !isPublished_ && !path_.empty()) {
        removeQuietly(path_);
    }
}

void StagedFolder::flush() const {
    if (!VolumeTransfer::flushFileSystem(folder_.descriptor())) {
        throw PlatformError::fromErrno(destination_, "flushed");
    }
}

void StagedFolder::publish() {
    (void)::rmdir(destination_.c_str()); // succeeds only if it is empty
    if (orRenameChecked(renameExclusively(path_, destination_), AT_FDCWD, path_.c_str(), AT_FDCWD,
                        destination_.c_str()) != 0) {
        throw PlatformError::fromErrno(destination_, "created");
    }
    path_ = destination_;
    isPublished_ = true;
    const FileHandle parent(openFolderForNames(destination_.parent_path()));
    (void)flushFolder(parent.descriptor());
}

void StagedFolder::withdraw() noexcept {
    struct stat facts {};
    if (::fstat(folder_.descriptor(), &facts) == 0 && identityOf(path_) == identityOf(facts)) {
        discard(path_);
    }
    path_.clear();
}

void StagedFolder::discard(const fs::path& folder) noexcept {
    try {
        const fs::path hidden = temporaryName(folder.parent_path());
        removeQuietly(::rename(folder.c_str(), hidden.c_str()) == 0 ? hidden : folder);
    } catch (const std::exception&) {
        return; // it stays as it is
    }
}

void StagedFolder::removeAbandoned(const fs::path& parent) noexcept {
    try {
        const auto names = directoryEntries(parent);
        for (const std::string& name : names ? *names : std::vector<std::string>()) {
            const fs::path path = joinAsText(parent, name);
            if (isHiddenName(name, copyingPrefix) &&
                lockedFolder(AT_FDCWD, path.c_str(), WithoutLocks::mayBeInUse).descriptor() >= 0) {
                removeQuietly(path);
            }
        }
    } catch (const std::exception&) {
        return;
    }
}

} // namespace quorvel

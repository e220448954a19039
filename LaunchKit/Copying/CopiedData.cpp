#include "LaunchKit/Copying/CopiedData.h"

#include "Base/CloneLayout.h"
#include "Base/PathText.h"
#include "LaunchKit/Copying/DataCopyRules.h"
#include "LaunchKit/Homes/DataFolderGuard.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/files/FileLock.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/ItemRelation.h"
#include "Platform/files/PlatformError.h"
#include "Platform/staging/StagedChange.h"

#include <algorithm>
#include <fcntl.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

void requireUnused(const DataPart& part) {
    if (part.requireUnused) {
        part.requireUnused();
    }
    if (const auto lock = lockInUse(part.from)) {
        throw DataCopyError("The data in " + part.from.string() + " is in use: “" + *lock +
                            "” belongs to a program that is running. Close it first.");
    }
}

// A copy inside its original would copy itself.
void requireApart(const fs::path& from, const fs::path& home) {
    if (ComparedItem(from).relationTo(home) != Relation::unrelated ||
        ComparedItem(home).relationTo(from) != Relation::unrelated) {
        throw DataCopyError("The data in " + from.string() + " can’t be copied to " +
                            home.string() + ", since one would be inside the other.");
    }
}

const fs::path& checkedPlace(const fs::path& home, const std::vector<DataPart>& parts) {
    CopiedData::requireFree(home);
    for (const DataPart& part : parts) {
        requireApart(part.from, home);
    }
    return home;
}

std::vector<fs::path> foldersOf(const std::vector<DataPart>& parts) {
    std::vector<fs::path> folders;
    std::transform(parts.begin(), parts.end(), std::back_inserter(folders),
                   [](const DataPart& part) { return part.from; });
    return folders;
}

FileHandle folderIn(const StagedFolder& folder, const std::string& below) {
    const fs::path path = joinAsText(folder.path(), below);
    createDirectories(path);
    FileHandle opened(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (opened.descriptor() < 0) {
        throw PlatformError::fromErrno(path, "opened");
    }
    return opened;
}

// The inode distinguishes the folder from a copy of it, in which the mark means nothing.
std::string markFor(int folder, const fs::path& wrapper) {
    struct stat facts {};
    (void)::fstat(folder, &facts);
    return std::to_string(facts.st_ino) + " " + wrapper.string();
}

// Returns whether the folder is the data of a clone, which may have been renamed or moved since it
// was made. Returns std::nullopt if that is unknown: the folder of the clone that was to be made is
// missing, as on a disk that is not mounted, or a clone there is being changed.
std::optional<bool> isDataOfAClone(const fs::path& folder, const fs::path& wrapper) {
    const fs::path beside = wrapper.parent_path();
    const auto names = directoryEntries(beside);
    const auto lock = names ? FileLock::tryTakeFolder(beside) : std::nullopt;
    if (!lock || std::any_of(names->begin(), names->end(), StagedChange::isHiddenFolder)) {
        return std::nullopt;
    }
    std::vector<fs::path> folders = InstanceRegistry::defaultSearchDirs();
    folders.push_back(beside);
    const std::vector<InstanceRecord> clones = InstanceRegistry(std::move(folders)).list();
    return std::any_of(clones.begin(), clones.end(), [&](const InstanceRecord& clone) {
        return isSameItem(dataFolderOf(clone.config).path, folder);
    });
}

void settle(const fs::path& folder) {
    constexpr std::size_t limit = 65536;
    const fs::path mark = joinAsText(folder, copiedMarkName);
    const auto text = !itemExists(mark) || isSymbolicLink(folder) || isSymbolicLink(mark)
                          ? std::nullopt
                          : readFile(mark, limit);
    // Locked by the program that is still making the clone.
    const auto lock = text ? FileLock::tryTakeFolder(folder) : std::nullopt;
    if (!lock || !itemExists(mark)) {
        return;
    }
    const std::string wrapper = text->substr(std::min(text->find(' ') + 1, text->size()));
    const auto isUsed = isDataOfAClone(folder, wrapper);
    if (isUsed == true) {
        (void)::unlink(mark.c_str());
    } else if (isUsed == false && *text == markFor(lock->descriptor(), wrapper)) {
        StagedFolder::discard(folder);
    }
}

// A folder that can't be read must not stop the others.
void settleQuietly(const fs::path& folder) noexcept {
    try {
        settle(folder);
    } catch (const std::exception&) {
        return; // the next one tries again
    }
}

} // namespace

CopiedData::CopiedData(const fs::path& home, const std::vector<DataPart>& parts,
                       const FolderCopyOptions& options)
    : folder_(checkedPlace(home, parts)),
      search_(foldersOf(parts)),
      cancelled_(options.cancelled) {
    FolderCopyOptions complete = options;
    complete.excludes = staysBehind;
    for (const DataPart& part : parts) {
        const std::string below = part.to.empty() ? "" : part.to + "/";
        complete.copied = [&](const CopiedContent& item) { search_.lookAt(item, below); };
        requireUnused(part);
        const FileHandle to =
            part.to.empty() ? FileHandle(::dup(folder_.descriptor())) : folderIn(folder_, part.to);
        report_ += FolderCopy(part.from, complete).copyInto(to.descriptor());
        requireUnused(part);
    }
}

void CopiedData::requireFree(const fs::path& home) {
    const auto names = directoryEntries(home);
    if (isSymbolicLink(home) || (names ? !names->empty() : itemOrLinkExists(home))) {
        throw DataCopyError("There is something at " + home.string() +
                            " already, where the new clone’s data would be.");
    }
}

void CopiedData::complete(const fs::path& wrapper) const {
    writeWholeFile(joinAsText(folder_.path(), copiedMarkName),
                   markFor(folder_.descriptor(), wrapper));
    folder_.flush();
    if (cancelled_ != nullptr && *cancelled_) {
        throw CopyCancelled();
    }
}

void CopiedData::publish() {
    folder_.publish();
}

void CopiedData::finish() noexcept {
    (void)::unlinkat(folder_.descriptor(), copiedMarkName.data(), 0);
}

void CopiedData::removeUnfinished(const fs::path& parent) noexcept {
    StagedFolder::removeAbandoned(parent);
    try {
        const auto names = directoryEntries(parent);
        for (const std::string& name : names ? *names : std::vector<std::string>()) {
            settleQuietly(joinAsText(parent, name));
        }
    } catch (const std::exception&) {
        return; // the next one tries again
    }
}

} // namespace quorvel

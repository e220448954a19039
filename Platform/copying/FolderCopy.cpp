#include "Platform/copying/FolderCopy.h"

#include "Base/PathText.h"
#include "Platform/copying/ByteCopy.h"
#include "Platform/copying/FileCloning.h"
#include "Platform/copying/ItemCopy.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/Folder.h"
#include "Platform/files/FolderWalk.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/VolumeTransfer.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <unistd.h>
#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// File systems may reserve more until a file is closed.
std::uintmax_t bytesOnDisk(int file) {
    constexpr std::uintmax_t unit = 512;
    constexpr std::uintmax_t block = 4096;
    struct stat facts {};
    if (::fstat(file, &facts) != 0) {
        return 0;
    }
    const auto size = static_cast<std::uintmax_t>(facts.st_size);
    return std::min(static_cast<std::uintmax_t>(facts.st_blocks) * unit,
                    (size + block - 1) / block * block);
}

bool isCopyable(const struct stat& facts) {
    return S_ISREG(facts.st_mode) || S_ISDIR(facts.st_mode) || S_ISLNK(facts.st_mode);
}

} // namespace

FolderCopyReport& FolderCopyReport::operator+=(const FolderCopyReport& other) {
    items += other.items;
    clonedFiles += other.clonedFiles;
    copiedFiles += other.copiedFiles;
    bytes += other.bytes;
    bytesTaken += other.bytesTaken;
    return *this;
}

std::size_t FolderCopy::IdentityHash::operator()(const ItemIdentity& identity) const noexcept {
    constexpr std::uint64_t spread = 0x9E3779B97F4A7C15U;
    return (static_cast<std::uint64_t>(identity.inode) ^
            (static_cast<std::uint64_t>(identity.device) << 48U)) *
           spread;
}

// With a slash at its end, a link would be followed.
FolderCopy::FolderCopy(const fs::path& source, FolderCopyOptions options)
    : source_(withoutTrailingSlashes(source)),
      options_(std::move(options)),
      root_(::open(source_.c_str(), folderFlags)) {
    const auto mount = root_.descriptor() < 0 ? std::nullopt : mountOf(root_.descriptor());
    if (!mount) {
        fail("", errno == ELOOP ? ENOTDIR : errno);
    }
    mount_ = *mount;
}

FolderCopyReport FolderCopy::copyInto(int destination) {
    destination_ = destination;
    count();
    struct stat facts {};
    if (::fstat(root_.descriptor(), &facts) != 0) {
        fail("", errno);
    }
    remember(facts, true);
    copyFolder({.from = root_.descriptor(), .to = destination}, facts);
    requireUnchanged();
    if (options_.progress) {
        progress_.items = progress_.allItems; // with what was left out
        progress_.bytes = progress_.allBytes;
        options_.progress(progress_);
    }
    return report_;
}

void FolderCopy::fail(const std::string& path, int error) const {
    if (error == ECANCELED) {
        throw CopyCancelled();
    }
    throw copyFailure(error, withoutTrailingSlashes(path), source_, "copied");
}

// Finds what makes a complete copy impossible before anything is copied.
void FolderCopy::count() {
    FolderWalk walk(root_.descriptor(), mount_);
    while (const auto step = walk.next()) {
        if (options_.cancelled != nullptr && *options_.cancelled) {
            throw CopyCancelled();
        }
        if (step->kind == FolderWalk::Kind::anotherMount ||
            step->kind == FolderWalk::Kind::unreadable) {
            fail(walk.path(), step->error);
        }
        struct stat facts {};
        ++progress_.allItems;
        if (::fstatat(step->folder, step->name, &facts, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(facts.st_mode)) {
            progress_.allBytes += static_cast<std::uintmax_t>(facts.st_size);
        }
    }
}

void FolderCopy::report(std::uintmax_t bytes, bool isItem) {
    constexpr std::chrono::milliseconds pause{100};
    progress_.bytes += bytes;
    progress_.items += isItem ? 1 : 0;
    if (options_.cancelled != nullptr && *options_.cancelled) {
        throw CopyCancelled();
    }
    const auto now = std::chrono::steady_clock::now();
    if (options_.progress && now - reported_ >= pause) {
        reported_ = now;
        options_.progress(progress_);
    }
}

void FolderCopy::remember(const struct stat& facts, bool isCopied) {
    states_.try_emplace(identityOf(facts), State{.size = facts.st_size,
                                                 .modified = VolumeTransfer::datesIn(facts)[1],
                                                 .changed = VolumeTransfer::changeIn(facts),
                                                 .isCopied = isCopied});
}

void FolderCopy::copyFolder(const Place& place, const struct stat& facts) {
    // Each level holds two descriptors.
    constexpr int deepest = 400;
    if (place.level > deepest) {
        fail(place.path, ENAMETOOLONG);
    }
    std::optional<Folder> listed = Folder::owning(::openat(place.from, ".", folderFlags));
    if (!listed) {
        fail(place.path, errno);
    }
    const std::vector<std::string> names = listed->entries();
    listed.reset();
    for (const std::string& name : names) {
        copyItem(place, name, names);
    }
    if (!copyAttributesAndDates(place.from, place.to, facts)) {
        fail(place.path, errno);
    }
}

void FolderCopy::copyItem(const Place& place, const std::string& name,
                          const std::vector<std::string>& siblings) {
    struct stat facts {};
    const std::string path = place.path + name;
    if (::fstatat(place.from, name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0) {
        fail(path, errno == ENOENT ? EBUSY : errno);
    }
    if (!isCopyable(facts) || (options_.excludes && options_.excludes({.path = path,
                                                                       .name = name,
                                                                       .facts = facts,
                                                                       .folder = place.from,
                                                                       .siblings = siblings}))) {
        remember(facts, false);
        if (S_ISDIR(facts.st_mode)) {
            leftOut_.push_back(path);
        }
        return;
    }
    remember(facts, true);
    if (S_ISDIR(facts.st_mode)) {
        copySubfolder(place, name, facts);
    } else if (!linkToCopy(place, name, facts)) {
        if (S_ISREG(facts.st_mode)) {
            copyFile(place, name, facts);
        } else {
            copyLink(place, name, facts);
        }
    } else {
        showLinkedItem(place, name, facts);
    }
    ++report_.items;
    report(0, true);
}

void FolderCopy::copySubfolder(const Place& place, const std::string& name,
                               const struct stat& facts) {
    const std::string path = place.path + name;
    const FileHandle from(openFolderOnMount(place.from, name.c_str(), mount_));
    struct stat now {};
    if (from.descriptor() < 0 || ::fstat(from.descriptor(), &now) != 0) {
        fail(path, errno == ENOENT ? EBUSY : errno);
    }
    if (identityOf(now) != identityOf(facts)) {
        fail(path, EBUSY);
    }
    if (::mkdirat(place.to, name.c_str(), 0700) != 0) {
        fail(path, errno);
    }
    const FileHandle to(::openat(place.to, name.c_str(), folderFlags));
    if (to.descriptor() < 0) {
        fail(path, errno);
    }
    copyFolder({.from = from.descriptor(),
                .to = to.descriptor(),
                .path = path + "/",
                .level = place.level + 1},
               facts);
}

FileHandle FolderCopy::copyOf(const FileHandle& from, const Place& place, const std::string& name,
                              const struct stat& facts) {
    const auto size = static_cast<std::uintmax_t>(facts.st_size);
    report_.bytes += size;
    if (triesCloning_ && facts.st_size > 0) {
        FileHandle clone = cloneFile(from.descriptor(), place.to, name.c_str());
        if (clone.descriptor() >= 0) {
            ++report_.clonedFiles;
            report(size, false);
            return clone;
        }
        triesCloning_ = !meansNoCloning(errno);
    }
    FileHandle to = createFileIn(place.to, name.c_str());
    if (to.descriptor() < 0 ||
        !copyBytes(from, to, [&](std::size_t count) { report(count, false); })) {
        fail(place.path + name, errno);
    }
    ++report_.copiedFiles;
    report_.bytesTaken += bytesOnDisk(to.descriptor());
    return to;
}

void FolderCopy::copyFile(const Place& place, const std::string& name, const struct stat& facts) {
    const FileHandle from(openFileOnMount(place.from, name.c_str(), mount_));
    struct stat now {};
    if (from.descriptor() < 0 || ::fstat(from.descriptor(), &now) != 0) {
        fail(place.path + name, errno == ENOENT ? EBUSY : errno);
    }
    if (!isUnchanged(now)) {
        fail(place.path + name, EBUSY);
    }
    const FileHandle to = copyOf(from, place, name, facts);
    if (!copyAttributesAndDates(from.descriptor(), to.descriptor(), facts)) {
        fail(place.path + name, errno);
    }
    if (facts.st_nlink > 1) {
        linked_.emplace(identityOf(facts), place.path + name);
    }
    if (options_.copied) {
        options_.copied({.path = place.path + name, .file = from.descriptor(), .target = {}});
    }
}

// The caller may be interested in each of its names.
void FolderCopy::showLinkedItem(const Place& place, const std::string& name,
                                const struct stat& facts) {
    if (options_.copied && S_ISREG(facts.st_mode)) {
        const FileHandle file(openFileOnMount(place.from, name.c_str(), mount_));
        options_.copied({.path = place.path + name, .file = file.descriptor(), .target = {}});
    } else if (options_.copied) {
        const std::string target = linkTargetIn(place.from, name.c_str()).value_or("");
        options_.copied({.path = place.path + name, .target = target});
    }
}

void FolderCopy::copyLink(const Place& place, const std::string& name, const struct stat& facts) {
    const auto target = copyLinkIn(place.from, place.to, name.c_str(), facts);
    if (!target) {
        fail(place.path + name, errno);
    }
    if (facts.st_nlink > 1) {
        linked_.emplace(identityOf(facts), place.path + name);
    }
    if (options_.copied) {
        options_.copied({.path = place.path + name, .target = *target});
    }
}

bool FolderCopy::linkToCopy(const Place& place, const std::string& name, const struct stat& facts) {
    const auto copy = facts.st_nlink > 1 ? linked_.find(identityOf(facts)) : linked_.end();
    return copy != linked_.end() &&
           ::linkat(destination_, copy->second.c_str(), place.to, name.c_str(), 0) == 0;
}

bool FolderCopy::isUnchanged(const struct stat& now) const {
    const auto state = states_.find(identityOf(now));
    if (state == states_.end()) {
        return false;
    }
    const State& then = state->second;
    return !then.isCopied || ((S_ISDIR(now.st_mode) || then.size == now.st_size) &&
                              isSameDate(then.modified, VolumeTransfer::datesIn(now)[1]) &&
                              isSameDate(then.changed, VolumeTransfer::changeIn(now)));
}

bool FolderCopy::isLeftOut(const std::string& path) const {
    return std::any_of(leftOut_.begin(), leftOut_.end(),
                       [&](const std::string& folder) { return isAtOrBelow(path, folder); });
}

// A file may have changed after it was copied, and no longer match another one that was copied
// later. A folder's date changes if an item is added or removed.
void FolderCopy::requireUnchanged() const {
    struct stat now {};
    FolderWalk walk(root_.descriptor(), mount_);
    while (const auto step = walk.next()) {
        const bool isSame = step->folder >= 0 &&
                            ::fstatat(step->folder, step->name, &now, AT_SYMLINK_NOFOLLOW) == 0 &&
                            isUnchanged(now);
        if (!isSame && !isLeftOut(walk.path())) {
            fail(walk.path(), EBUSY);
        }
    }
    if (::fstat(root_.descriptor(), &now) != 0 || !isUnchanged(now)) {
        fail("", EBUSY);
    }
}

} // namespace quorvel

#pragma once

#include "Base/Error.h"
#include "Platform/files/FileHandle.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/files/MountBoundary.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <sys/stat.h>
#include <unordered_map>
#include <vector>

namespace quorvel {

/// Thrown when a copy is cancelled.
class CopyCancelled : public Error {
public:
    CopyCancelled() : Error("The copy was cancelled.") {}
};

/// An item of a folder that is being copied.
struct CopiedItem {
    const std::string& path;                  ///< relative to the folder
    const std::string& name;                  ///< in its own folder
    const struct stat& facts;                 ///< not following a link
    int folder;                               ///< its own folder, open
    const std::vector<std::string>& siblings; ///< the names in its own folder
};

/// The progress of a copy.
struct CopyProgress {
    std::size_t items = 0;
    std::size_t allItems = 0;
    std::uintmax_t bytes = 0;
    std::uintmax_t allBytes = 0;
};

/// A file or a link that was copied.
struct CopiedContent {
    const std::string& path;   ///< relative to the folder
    int file = -1;             ///< the original, open for reading; -1 for a link
    const std::string& target; ///< what a link leads to
};

struct FolderCopyOptions {
    /// Returns whether an item is not to be copied. Sockets, FIFOs and devices never are.
    std::function<bool(const CopiedItem&)> excludes{};
    /// Called for each file and link once it is copied, while its bytes are in memory.
    std::function<void(const CopiedContent&)> copied{};
    /// Called on the thread that copies, every 100 ms at most and once at the end.
    std::function<void(const CopyProgress&)> progress{};
    /// Cancels the copy once it is true. If null, the copy can't be cancelled.
    const std::atomic<bool>* cancelled = nullptr;
};

/// What was copied.
struct FolderCopyReport {
    std::size_t items = 0;         ///< files, links and folders
    std::size_t clonedFiles = 0;   ///< files that share their blocks with the originals
    std::size_t copiedFiles = 0;   ///< other files
    std::uintmax_t bytes = 0;      ///< the sizes of both
    std::uintmax_t bytesTaken = 0; ///< on disk, by `copiedFiles`

    FolderCopyReport& operator+=(const FolderCopyReport& other);
};

/// Copies what a folder contains into another one: by cloning files where the file system can do
/// that, otherwise bytes and holes. Keeps modes, owners where that is allowed, dates, extended
/// attributes, links as links and hard links between the items. Never follows a link and never
/// leaves the mount of the folder. Can be used once.
class FolderCopy {
public:
    /// Opens the folder `source`, which must not be a link. Throws `PlatformError`.
    explicit FolderCopy(const std::filesystem::path& source, FolderCopyOptions options = {});

    /// Copies everything into an open, empty folder, which gets the attributes of `source` too.
    /// Throws `CopyCancelled`, or a `PlatformError` that names what can't be copied: also if
    /// something is mounted in the folder, or if anything has changed since it was opened. What was
    /// copied until then remains.
    FolderCopyReport copyInto(int destination);

private:
    // An item when it was opened.
    struct State {
        off_t size = 0;
        timespec modified{};
        timespec changed{};
        bool isCopied = true;
    };
    struct IdentityHash {
        std::size_t operator()(const ItemIdentity& identity) const noexcept;
    };
    // The folder that is being copied.
    struct Place {
        int from = -1;
        int to = -1;
        std::string path{}; ///< relative to `source_`; ends with "/" unless it is empty
        int level = 0;
    };

    void count();
    void copyFolder(const Place& place, const struct stat& facts);
    void copyItem(const Place& place, const std::string& name,
                  const std::vector<std::string>& siblings);
    void copySubfolder(const Place& place, const std::string& name, const struct stat& facts);
    void copyFile(const Place& place, const std::string& name, const struct stat& facts);
    [[nodiscard]] FileHandle copyOf(const FileHandle& from, const Place& place,
                                    const std::string& name, const struct stat& facts);
    void copyLink(const Place& place, const std::string& name, const struct stat& facts);
    [[nodiscard]] bool linkToCopy(const Place& place, const std::string& name,
                                  const struct stat& facts);
    void showLinkedItem(const Place& place, const std::string& name, const struct stat& facts);
    void remember(const struct stat& facts, bool isCopied);
    void requireUnchanged() const;
    [[nodiscard]] bool isUnchanged(const struct stat& now) const;
    [[nodiscard]] bool isLeftOut(const std::string& path) const;
    void report(std::uintmax_t bytes, bool isItem);
    [[noreturn]] void fail(const std::string& path, int error) const;

    std::filesystem::path source_;
    FolderCopyOptions options_;
    FileHandle root_;
    Mount mount_{};
    int destination_ = -1;
    bool triesCloning_ = true;
    FolderCopyReport report_{};
    CopyProgress progress_{};
    std::chrono::steady_clock::time_point reported_{};
    std::unordered_map<ItemIdentity, State, IdentityHash> states_{};
    std::unordered_map<ItemIdentity, std::string, IdentityHash> linked_{}; ///< paths of copies
    std::vector<std::string> leftOut_{};                                   ///< paths of folders
};

} // namespace quorvel

#pragma once

#include "Platform/files/ItemIdentity.h"
#include "Platform/files/MountBoundary.h"

#include <array>
#include <ctime>
#include <filesystem>
#include <map>
#include <string>
#include <sys/stat.h>

namespace quorvel {

/// Copies items to another file system with bytes and holes, modes, owners where that is allowed,
/// dates, extended attributes, links as links, FIFOs and sockets. Keeps hard links between the
/// copied items, including those of earlier copies.
class TreeCopy {
public:
    /// Copies `name` in the open folder `from` to the same name in the open folder `to`. `item` is
    /// the item's path, for errors. Throws a `PlatformError` that names what can't be copied, also
    /// if something is at the destination, or if the item changes meanwhile, contains a folder that
    /// can't be emptied afterwards, or contains a mount point. A partial copy may remain.
    void copy(int from, int to, const std::string& name, const std::filesystem::path& item);

    /// Records that the last copy is now at `path` and that its original is about to be removed.
    void movedTo(const std::filesystem::path& path);

private:
    // A copied file that has, or had, further names.
    struct LinkedFile {
        std::filesystem::path copy{}; ///< below `to` until the copy is moved
        ItemIdentity copied{};
        std::array<timespec, 2> dates{};
        off_t size = 0;
        nlink_t missing = 0; ///< names that have not been found yet
    };

    // The item that is being copied.
    struct Place {
        int from = -1;
        int to = -1;
        std::string name{};
        std::filesystem::path inside{}; ///< relative to `to` of the whole copy
    };

    void copyItem(const Place& place);
    void copyFolder(const Place& place, const struct stat& facts);
    void copyFile(const Place& place, const struct stat& facts);
    void copyLink(const Place& place, const struct stat& facts);
    void copyNode(const Place& place, const struct stat& facts);
    [[nodiscard]] bool linkToCopy(const Place& place, const struct stat& facts);
    void remember(const Place& place, const struct stat& facts, int copy);
    [[noreturn]] void fail(const Place& place, int error) const;

    std::filesystem::path item_{};
    int root_ = -1;
    Mount mount_{};
    std::map<ItemIdentity, LinkedFile> linked_{};  ///< of the copy being made
    std::map<ItemIdentity, LinkedFile> earlier_{}; ///< of copies that were moved
};

} // namespace quorvel

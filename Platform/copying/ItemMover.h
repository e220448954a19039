#pragma once

#include "Platform/copying/TreeCopy.h"
#include "Platform/staging/ExclusiveRename.h"

#include <filesystem>
#include <functional>
#include <string>

namespace quorvel {

/// Renames an item without replacing anything; returns what `renameExclusively` returns.
using ExclusiveRename = std::function<int(const std::filesystem::path& source,
                                          const std::filesystem::path& destination)>;

/// Moves items, also to another file system. For that, an item is copied under a temporary name
/// beside its destination, flushed to disk and renamed; only then is the original removed. A folder
/// beside the original records the progress, so that an interrupted move can be finished without
/// losing or duplicating anything.
class ItemMover {
public:
    /// If `exclusively` reports that the file system does not support it, the destination is
    /// checked before an ordinary rename.
    explicit ItemMover(ExclusiveRename exclusively = renameExclusively);

    /// Moves an item. Throws `PlatformError`, also if anything is at `destination`; then the item
    /// is still complete at `source`, including what was written into it meanwhile, or the error
    /// says that it was copied but part of the original can't be removed. Keeps hard links between
    /// the items that one mover moves. Another mover, after an interruption, doesn't know them: the
    /// items that it moves share a second copy of the file.
    void move(const std::filesystem::path& source, const std::filesystem::path& destination);

    /// Returns whether an interrupted move leaves a folder of that name beside its original.
    [[nodiscard]] static bool isLeftover(const std::string& name);

    /// Returns a free path, derived from one that may be taken.
    using FreePath = std::function<std::filesystem::path(const std::filesystem::path&)>;

    /// Finishes an interrupted move into the folder `destination` that left `leftover`: the item is
    /// moved, or put back if its copy is incomplete. Returns whether it was moved by this call.
    /// Throws `PlatformError`, also if the move is still running.
    bool finish(const std::filesystem::path& leftover, const std::filesystem::path& destination,
                const FreePath& freePath);

private:
    void moveAcross(const std::filesystem::path& source, const std::filesystem::path& destination);
    void putBack(const std::filesystem::path& leftover, const std::string& name,
                 const FreePath& freePath) const;
    [[nodiscard]] int renameWhereFree(const std::filesystem::path& source,
                                      const std::filesystem::path& destination) const;

    ExclusiveRename exclusively_;
    TreeCopy copy_{};
};

} // namespace quorvel

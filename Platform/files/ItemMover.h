#pragma once

#include "Platform/files/ExclusiveRename.h"
#include "Platform/files/TreeCopy.h"

#include <filesystem>
#include <functional>
#include <string>

namespace quorvel {

/// How an item is renamed without replacing anything; answers as `renameExclusively` does.
using ExclusiveRename = std::function<int(const std::filesystem::path& source,
                                          const std::filesystem::path& destination)>;

/// Moves items, across file systems too. There an item is copied under another name beside its
/// destination and takes its place when it is whole and on the disk; only then does the original
/// go. A folder beside the original tells how far that got, so that a move that was cut off can be
/// finished: nothing is lost, and nothing is there twice.
class ItemMover {
public:
    /// Where `exclusively` says that the file system can't do it, a look beforehand has to do.
    explicit ItemMover(ExclusiveRename exclusively = renameExclusively);

    /// Moves an item to a path where nothing may be. When it throws `PlatformError`, the item is
    /// still whole at `source`, with what was written into it meanwhile; or, with an error that
    /// says so, it has arrived and something of the original can't be removed. Hard links between
    /// the items that one mover moves stay so.
    void move(const std::filesystem::path& source, const std::filesystem::path& destination);

    /// Whether a file of that name is what a move that was cut off left beside its original.
    [[nodiscard]] static bool isLeftover(const std::string& name);

    /// A free path derived from one where something may be.
    using FreePath = std::function<std::filesystem::path(const std::filesystem::path&)>;

    /// Finishes a move into the folder `destination` that left `leftover`: the item arrives, or is
    /// back where it was when its copy is not whole. True when it arrives only now. Throws
    /// `PlatformError`, also while the move is still under way.
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

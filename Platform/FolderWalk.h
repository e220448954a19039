#pragma once

#include "Platform/FileHandle.h"
#include "Platform/ItemIdentity.h"
#include "Platform/MountBoundary.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// Goes through everything below an open folder, what a folder holds before the folder itself.
/// Follows no link and leaves no mount, not even when items are swapped meanwhile. However deep the
/// tree is, it needs no deep stack, and keeps a few dozen folders open at most.
class FolderWalk {
public:
    enum class Kind {
        item,        ///< no folder, as far as one can see
        folderLeft,  ///< a folder, after all that it holds
        unreadable,  ///< a folder that can't be looked into, for the reason `error`
        anotherMount ///< a folder on which something is mounted
    };

    struct Step {
        Kind kind = Kind::item;
        int folder = -1; ///< the open folder that holds it; -1 when that was moved away meanwhile
        const char* name = nullptr; ///< in that folder; valid until the next step
        int error = 0;
    };

    /// `root` is open for reading, lies on `mount` and stays the caller's.
    FolderWalk(int root, const Mount& mount);

    /// Nothing at the end.
    [[nodiscard]] std::optional<Step> next();

    /// The path of the last step's item, relative to the root.
    [[nodiscard]] std::string path() const;

private:
    struct Entry {
        std::string name{};
        bool mayBeFolder = false;
    };
    struct Level {
        std::string name{};
        FileHandle folder{-1}; ///< closed while the walk is far below
        ItemIdentity identity{};
        std::vector<Entry> entries{};
        std::size_t next = 0;
    };

    /// Goes down into `entry` of the last level, or tells why it does not.
    [[nodiscard]] std::optional<Step> enter(const Entry& entry);
    [[nodiscard]] Step leave();
    void push(std::string name, FileHandle folder);
    /// Opens the last level anew as the folder above `below`.
    [[nodiscard]] bool reopen(int below);
    [[nodiscard]] Step step(Kind kind, int error = 0) const;

    Mount mount_;
    std::vector<Level> levels_{};
    std::string name_{}; ///< of the last step's item
};

} // namespace quorvel

#pragma once

#include "Platform/files/FileHandle.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/files/MountBoundary.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// Walks through everything below an open folder, each folder's contents before the folder itself.
/// Follows no link and does not leave the mount, even if items are swapped meanwhile. Uses constant
/// stack space and keeps at most a few dozen folders open, however deep the tree is.
class FolderWalk {
public:
    enum class Kind {
        item,        ///< not a folder, as far as can be determined
        folderLeft,  ///< a folder, after all its contents
        unreadable,  ///< a folder that can't be listed, for the reason `error`
        anotherMount ///< a folder on which something is mounted
    };

    struct Step {
        Kind kind = Kind::item;
        /// The open folder that contains it; -1 if that was moved away meanwhile, and for the root.
        int folder = -1;
        const char* name = nullptr; ///< in that folder; valid until the next step
        int error = 0;
    };

    /// `root` must be open for reading and lie on `mount`. The caller keeps ownership of it.
    FolderWalk(int root, const Mount& mount);

    /// Returns the next step, or std::nullopt at the end. If the root can't be listed, that is the
    /// only step: `unreadable` with an empty name.
    [[nodiscard]] std::optional<Step> next();

    /// Returns the path of the last step's item, relative to the root.
    [[nodiscard]] std::string path() const;

private:
    struct Entry {
        std::string name{};
        bool mayBeFolder = false;
    };
    struct Level {
        std::string name{};
        FileHandle folder{-1}; ///< closed while the walk is far below it
        ItemIdentity identity{};
        std::vector<Entry> entries{};
        std::size_t next = 0;
    };

    /// Descends into `entry` of the last level, or returns the step that reports why not.
    [[nodiscard]] std::optional<Step> enter(const Entry& entry);
    [[nodiscard]] Step leave();
    /// Lists the folder and makes it the last level. Returns 0 or an `errno` value.
    [[nodiscard]] int push(std::string name, FileHandle folder);
    /// Lists the folder. Returns 0 or an `errno` value.
    [[nodiscard]] static int list(int folder, std::vector<Entry>& entries);
    /// Reopens the last level as the parent of `below`. Returns whether it is the same folder.
    [[nodiscard]] bool reopen(int below);
    [[nodiscard]] Step step(Kind kind, int error = 0) const;

    Mount mount_;
    std::vector<Level> levels_{};
    std::string name_{}; ///< of the last step's item
    int rootError_ = 0;
};

} // namespace quorvel

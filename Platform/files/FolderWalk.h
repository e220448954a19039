#pragma once

#include "Platform/files/FileHandle.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/files/MountBoundary.h"

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
        /// The open folder that holds it; -1 when that was moved away meanwhile, and for the root.
        int folder = -1;
        const char* name = nullptr; ///< in that folder; valid until the next step
        int error = 0;
    };

    /// `root` is open for reading, lies on `mount` and stays the caller's.
    FolderWalk(int root, const Mount& mount);

    /// Nothing at the end. A root that can't be listed is the only step, `unreadable` with an empty
    /// name.
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
    /// Lists the folder and makes it the last level. Gives an error's number, 0 for none.
    [[nodiscard]] int push(std::string name, FileHandle folder);
    /// The same, of what the folder holds.
    [[nodiscard]] static int list(int folder, std::vector<Entry>& entries);
    /// Opens the last level anew as the folder above `below`.
    [[nodiscard]] bool reopen(int below);
    [[nodiscard]] Step step(Kind kind, int error = 0) const;

    Mount mount_;
    std::vector<Level> levels_{};
    std::string name_{}; ///< of the last step's item
    int rootError_ = 0;
};

} // namespace quorvel

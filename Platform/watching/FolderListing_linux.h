#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// What a folder's item was through since some moment.
struct ItemHistory {
    bool isDir = false;
    bool created = false;
    bool modified = false;
    bool changed = false; ///< anything at all, a rename or new permissions included
};

/// A moment after which every change can be told from those before it by its time stamp.
class ChangeClock {
public:
    /// The moment now. Blocks for some milliseconds, until later changes have later stamps.
    [[nodiscard]] static ChangeClock start();

    /// What happened to the item itself (no link followed) since then; nothing when it is gone.
    [[nodiscard]] std::optional<ItemHistory> historyOf(const std::string& path) const;

private:
    explicit ChangeClock(const timespec& moment) : moment_(moment) {}

    timespec moment_;
};

struct FolderItem {
    std::string name{};
    bool isDir = false; ///< a folder itself, not a link to one
};

/// What a folder holds. Nothing, with `errno` set, when it can't be read. A link in place of the
/// folder is followed only when told so.
[[nodiscard]] std::optional<std::vector<FolderItem>> listFolder(const std::string& path,
                                                                bool followsLink);

} // namespace quorvel

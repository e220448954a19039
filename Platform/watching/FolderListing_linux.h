#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// What happened to a directory entry since a given time.
struct ItemHistory {
    bool isDir = false;
    bool created = false;
    bool modified = false;
    bool changed = false; ///< in any way, including a rename or new permissions
};

/// A moment that separates earlier from later changes by their time stamps.
class ChangeClock {
public:
    /// Returns the current moment. Blocks for a few milliseconds, until changes get later stamps.
    [[nodiscard]] static ChangeClock start();

    /// Returns what happened to the item itself, not following a link, since then. Returns
    /// std::nullopt if it is gone.
    [[nodiscard]] std::optional<ItemHistory> historyOf(const std::string& path) const;

private:
    explicit ChangeClock(const timespec& moment) : moment_(moment) {}

    timespec moment_;
};

/// An entry of a folder.
struct FolderItem {
    std::string name{};
    bool isDir = false; ///< false for a link to a folder
};

/// Returns the entries of a folder, or std::nullopt with `errno` if it is unreadable, or if it is a
/// link and `followsLink` is false.
[[nodiscard]] std::optional<std::vector<FolderItem>> listFolder(const std::string& path,
                                                                bool followsLink);

} // namespace quorvel

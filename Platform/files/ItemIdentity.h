#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace quorvel {

/// What an item is on disk, whatever paths lead to it.
struct ItemIdentity {
    dev_t device = 0;
    ino_t inode = 0;

    bool operator==(const ItemIdentity&) const = default;
};

[[nodiscard]] ItemIdentity identityIn(const struct stat& status);

/// The item at `path`, a link itself not followed; nothing where nothing is.
[[nodiscard]] std::optional<ItemIdentity> identityOfItself(const std::filesystem::path& path);

/// The item that `path` leads to, links followed; nothing where nothing is.
[[nodiscard]] std::optional<ItemIdentity> identityBehind(const std::filesystem::path& path);

/// Where one item stands towards another.
enum class Standing { apart, same, above };

/// An item that others are compared with: as items on disk, so that no spelling and no link can
/// hide what a path leads to. A place where nothing is yet is compared by its resolved path.
/// Remembers the folders that it was compared with, for those who compare thousands.
class Place {
public:
    /// What the path names and, through a link, what it leads to.
    explicit Place(std::filesystem::path path);
    /// The item that is `identity` and nothing else.
    Place(std::filesystem::path path, ItemIdentity identity);

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    /// `same` when `target` is this item or a link to it, `above` when this item is a folder on
    /// the way to `target`.
    [[nodiscard]] Standing towards(const std::filesystem::path& target) const;

private:
    [[nodiscard]] bool isAt(const std::filesystem::path& path) const;
    [[nodiscard]] bool isOnTheWayTo(const std::filesystem::path& folder) const;
    [[nodiscard]] Standing along(const std::filesystem::path& target) const;

    std::filesystem::path path_;
    std::vector<ItemIdentity> identities_{};
    std::filesystem::path resolved_{}; ///< only where nothing is yet
    mutable std::map<std::string, bool> known_{};
    mutable std::map<std::string, std::filesystem::path> resolvedFolders_{};
};

} // namespace quorvel

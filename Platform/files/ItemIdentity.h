#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace quorvel {

/// Identifies an item on disk independently of its path.
struct ItemIdentity {
    dev_t device = 0;
    ino_t inode = 0;

    bool operator==(const ItemIdentity&) const = default;
};

/// Returns the identity of the item with this status.
[[nodiscard]] ItemIdentity identityOf(const struct stat& status);

/// Returns the identity of the item at `path`, not following a link. Returns std::nullopt if
/// nothing is there.
[[nodiscard]] std::optional<ItemIdentity> identityOf(const std::filesystem::path& path);

/// Returns the identity of the item that `path` leads to, following links. Returns std::nullopt if
/// nothing is there.
[[nodiscard]] std::optional<ItemIdentity> identityOfTarget(const std::filesystem::path& path);

/// How an item relates to another one.
enum class Relation { unrelated, same, ancestor };

/// An item that others are compared with: as items on disk, so that no spelling and no link can
/// disguise what a path leads to. A path at which nothing exists yet is compared by its resolved
/// form. Caches the folders that it was compared with, for callers that compare thousands.
class Place {
public:
    /// The item at `path` and, if that is a link, also what it leads to.
    explicit Place(std::filesystem::path path);
    /// Only the item with this identity.
    Place(std::filesystem::path path, ItemIdentity identity);

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    /// Returns `same` if `target` is this item or a link to it, `ancestor` if this item is a folder
    /// that contains `target`, directly or not, and `unrelated` otherwise.
    [[nodiscard]] Relation relationTo(const std::filesystem::path& target) const;

private:
    [[nodiscard]] bool isAt(const std::filesystem::path& path) const;
    [[nodiscard]] bool isAtOrAbove(const std::filesystem::path& folder) const;
    [[nodiscard]] Relation relationAlong(const std::filesystem::path& target) const;

    std::filesystem::path path_;
    std::vector<ItemIdentity> identities_{};
    std::filesystem::path resolved_{}; ///< only if nothing exists at `path_`
    mutable std::map<std::string, bool> known_{};
    mutable std::map<std::string, std::filesystem::path> resolvedFolders_{};
};

} // namespace quorvel

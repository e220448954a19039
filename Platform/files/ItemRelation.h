#pragma once

#include "Platform/files/ItemIdentity.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace quorvel {

/// How an item relates to another one.
enum class Relation { unrelated, same, ancestor };

/// An item that others are compared with: as items on disk, so that no spelling and no link can
/// disguise what a path leads to. A path at which nothing exists yet is compared by its resolved
/// form. Caches the folders that it was compared with, for callers that compare thousands.
class ComparedItem {
public:
    /// The item at `path` and, if that is a link, also what it leads to.
    explicit ComparedItem(std::filesystem::path path);
    /// Only the item with this identity.
    ComparedItem(std::filesystem::path path, ItemIdentity identity);

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

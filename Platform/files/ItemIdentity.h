#pragma once

#include <compare>
#include <filesystem>
#include <optional>
#include <sys/stat.h>

namespace quorvel {

/// Identifies an item on disk independently of its path.
struct ItemIdentity {
    dev_t device = 0;
    ino_t inode = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy 14 takes the comparison's 0 for a pointer.
    auto operator<=>(const ItemIdentity&) const = default;
};

/// Returns the identity of the item with this status.
[[nodiscard]] ItemIdentity identityOf(const struct stat& status);

/// Returns the identity of the item at `path`, not following a link. Returns std::nullopt if
/// nothing is there.
[[nodiscard]] std::optional<ItemIdentity> identityOf(const std::filesystem::path& path);

/// Returns the identity of the item that `path` leads to, following links. Returns std::nullopt if
/// nothing is there.
[[nodiscard]] std::optional<ItemIdentity> identityOfTarget(const std::filesystem::path& path);

} // namespace quorvel

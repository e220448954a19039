#pragma once

#include "Base/RandomUuid.h"

#include <string>
#include <string_view>

/// The names of the hidden items in which Quorvel prepares or sets aside others: a prefix and a
/// UUID. An interruption may leave them behind.
namespace quorvel {

/// Files that are being written.
inline constexpr std::string_view unfinishedPrefix = ".quorvel-";

/// Folders in which bundles are while they are replaced.
inline constexpr std::string_view changeFolderPrefix = ".quorvel-change-";

/// Folders that are being filled or removed.
inline constexpr std::string_view copyingPrefix = ".quorvel-copying-";

/// The folders of a move across file systems: beside the copy and beside the original while it is
/// running.
inline constexpr std::string_view movingPrefix = ".quorvel-moving-";

/// The folder of such a move beside the original, once the copy is complete.
inline constexpr std::string_view movedPrefix = ".quorvel-moved-";

/// Returns a new name with one of these prefixes.
[[nodiscard]] inline std::string newHiddenName(std::string_view prefix) {
    return std::string(prefix) + randomUuid();
}

/// Returns whether the name has this prefix, and something as long as a UUID after it.
[[nodiscard]] constexpr bool isHiddenName(std::string_view name, std::string_view prefix) noexcept {
    return name.starts_with(prefix) && name.size() == prefix.size() + uuidLength;
}

} // namespace quorvel

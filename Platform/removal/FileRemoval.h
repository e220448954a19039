#pragma once

#include <filesystem>

namespace quorvel {

/// Removes the item; a folder with everything in it. A symbolic link is removed, not its target. A
/// user's home, or a folder that contains one, is refused however `path` is written. Throws
/// `PlatformError`, also if nothing is there.
void removeItem(const std::filesystem::path& path);

/// Returns whether `path` leads to the user's own home or to a folder that contains it, through
/// links, "..", or another spelling.
[[nodiscard]] bool holdsUserHome(const std::filesystem::path& path);

} // namespace quorvel

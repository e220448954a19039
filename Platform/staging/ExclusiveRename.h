#pragma once

#include <filesystem>

namespace quorvel {

/// Renames an item atomically, failing if anything is at `destination`. Returns 0, or -1 with
/// `errno`, for which `meansNoSuchRename` is true if the file system does not support this.
[[nodiscard]] int renameExclusively(const std::filesystem::path& source,
                                    const std::filesystem::path& destination);

/// Does the same with items of open folders.
[[nodiscard]] int renameExclusivelyAt(int sourceFolder, const char* source, int destinationFolder,
                                      const char* destination);

/// Exchanges two items of open folders atomically, without following links. Returns as above.
[[nodiscard]] int exchangeItems(int folder, const char* name, int otherFolder,
                                const char* otherName);

} // namespace quorvel

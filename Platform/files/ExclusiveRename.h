#pragma once

#include <filesystem>

namespace quorvel {

/// Renames an item atomically, failing if anything is at `destination`. Returns 0, or -1 with
/// `errno`, which is EINVAL, ENOSYS or ENOTSUP if the file system does not support this.
[[nodiscard]] int renameExclusively(const std::filesystem::path& source,
                                    const std::filesystem::path& destination);

} // namespace quorvel

#pragma once

#include <filesystem>

namespace quorvel {

/// Renames where nothing may be at `destination`, not even what another program puts there at this
/// moment. Gives 0, or -1 and `errno`, which is one of EINVAL, ENOSYS and ENOTSUP where the file
/// system can't do it.
[[nodiscard]] int renameExclusively(const std::filesystem::path& source,
                                    const std::filesystem::path& destination);

} // namespace quorvel

#pragma once

namespace quorvel {

/// Renames within one file system and replaces nothing. As `rename` answers, with EEXIST when
/// something is there, and EINVAL, ENOSYS or ENOTSUP where the file system can't do it.
[[nodiscard]] int renameToNewName(const char* source, const char* destination);

} // namespace quorvel

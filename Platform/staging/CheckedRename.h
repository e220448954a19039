#pragma once

namespace quorvel {

/// Returns `result`, that of an exclusive rename of the item, unless the rename failed because the
/// file system does not support it, as with network file systems: then renames the item after
/// checking that nothing is at its new place. Returns 0, or -1 with `errno`.
[[nodiscard]] int orRenameChecked(int result, int folder, const char* name, int newFolder,
                                  const char* newName);

} // namespace quorvel

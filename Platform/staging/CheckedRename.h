#pragma once

namespace quorvel {

/// Returns `result`, which an exclusive rename of the item gave, unless that failed because the
/// file system has none, as network file systems do: then renames the item after checking that
/// nothing is at its new place. Returns 0, or -1 with `errno`.
[[nodiscard]] int orRenameChecked(int result, int folder, const char* name, int newFolder,
                                  const char* newName);

} // namespace quorvel

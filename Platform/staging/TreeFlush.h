#pragma once

/// Flushing what was written to disk, so that a power failure doesn't lose it. What a file system
/// can't flush counts as flushed.
namespace quorvel {

/// Flushes a folder that may be open for names only. Returns false, with `errno`, if that fails.
[[nodiscard]] bool flushFolder(int folder);

/// Flushes the item `name` of an open folder; a folder with everything in it. Does not follow links
/// and does not leave the mount. Returns false, with `errno`, if that fails.
[[nodiscard]] bool flushTree(int folder, const char* name);

} // namespace quorvel

#pragma once

#include <filesystem>
#include <string_view>

namespace quorvel {

/// When bytes that replace others get to the disk.
enum class Flush {
    now,  ///< before the file gets its name
    later ///< by the caller, as with `flushTree`
};

/// Writes a regular file. An existing one (links followed) is replaced as a whole: the new bytes
/// are written to a temporary file beside it, flushed as `flush` says, and renamed to its name. It
/// keeps its mode, its extended attributes and, where the system allows it, its owner and group;
/// its other hard links keep the old bytes. A new file is written under its own name. Throws
/// `PlatformError`; then an existing file is unchanged, and nothing is left of a new one.
void writeFile(const std::filesystem::path& path, std::string_view bytes, Flush flush = Flush::now);

/// Writes a regular file that other programs may read at any moment: they find the old one, or the
/// new one as a whole. What is at `path` is replaced, a link itself instead of its target. Throws
/// `PlatformError`; then the old file is unchanged.
void writeWholeFile(const std::filesystem::path& path, std::string_view bytes,
                    Flush flush = Flush::later);

/// Removes what interrupted writers left in the folder: their temporary files, if older than a
/// minute. Failures are ignored.
void removeUnfinishedFiles(const std::filesystem::path& folder);

} // namespace quorvel

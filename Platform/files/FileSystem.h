#pragma once

#include "Platform/files/FileHandle.h"
#include "Platform/files/PlatformError.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// File operations that never hang on a special file, never follow a link where that could lose
/// data, and report failures as `PlatformError`. Paths that hold a NUL byte are refused, since the
/// system would act on what stands before it.
namespace quorvel {

/// Whether anything is there, following links (a dangling link counts as nothing).
[[nodiscard]] bool itemExists(const std::filesystem::path& path) noexcept;

/// Whether anything is there, a dangling link included.
[[nodiscard]] bool itemOrLinkExists(const std::filesystem::path& path) noexcept;

/// Whether the item itself is a symbolic link.
[[nodiscard]] bool isSymbolicLink(const std::filesystem::path& path) noexcept;

/// Whether both paths lead to the same item on disk, links followed.
[[nodiscard]] bool isSameItem(const std::filesystem::path& a,
                              const std::filesystem::path& b) noexcept;

/// A regular file (links followed) that the current user may execute.
[[nodiscard]] bool isExecutableFile(const std::filesystem::path& path) noexcept;

/// The names in a folder in the file system's order, hidden ones included, without "." and "..".
/// Nothing when the folder can't be read.
[[nodiscard]] std::optional<std::vector<std::string>>
directoryEntries(const std::filesystem::path& folder);

/// The bytes of a regular file of at most `limit` bytes; nothing when it can't be read, is larger,
/// or is no regular file. Never blocks on a FIFO or a device. Takes the path as text, since
/// taking thousands of paths apart would cost more than reading the files.
[[nodiscard]] std::optional<std::string> readFile(const std::string& path, std::size_t limit);

/// Writes a regular file. One that is there (links followed) is replaced at once and whole: its new
/// bytes are on the disk, under another name beside it, before they take its name, and it keeps its
/// mode, owner and extended attributes; its other hard links keep the old bytes. A new file is
/// written under its own name. Throws `PlatformError`; then the old file is as it was, and of a new
/// one nothing is left.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

/// Creates the folder and those above it. An existing folder is fine. Throws `PlatformError`.
void createDirectories(const std::filesystem::path& folder);

/// Creates a folder, where nothing may be, that only its owner can use. Throws `PlatformError`.
void createPrivateFolder(const std::filesystem::path& folder);

/// Copies the bytes of a regular file (links followed) to a path where nothing may be.
/// Throws `PlatformError`.
void copyFile(const std::filesystem::path& source, const std::filesystem::path& destination);

/// Removes the item, a folder with everything in it. A symbolic link is removed, not what it points
/// to. A user's home, or a folder that holds one, is refused however `path` is written.
/// Throws `PlatformError`, also when nothing is there.
void removeItem(const std::filesystem::path& path);

/// Whether `path` leads to the user's own home or to a folder that holds it, through links, "..",
/// or another spelling.
[[nodiscard]] bool holdsUserHome(const std::filesystem::path& path);

/// Opens a regular file, created where needed, or a character device such as /dev/null for
/// appending; nothing when that fails.
[[nodiscard]] std::optional<FileHandle> openForAppending(const std::filesystem::path& path);

} // namespace quorvel

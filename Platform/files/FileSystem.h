#pragma once

#include "Platform/files/FileHandle.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// File operations that never hang on a special file and never follow a link where that could lose
/// data. Paths that contain a NUL byte are refused, because system calls would cut them off there.
namespace quorvel {

/// Returns whether anything is at `path`, links followed. A dangling link counts as nothing.
[[nodiscard]] bool itemExists(const std::filesystem::path& path) noexcept;

/// Returns whether anything is at `path`, including a dangling link.
[[nodiscard]] bool itemOrLinkExists(const std::filesystem::path& path) noexcept;

/// Returns whether the item itself is a symbolic link.
[[nodiscard]] bool isSymbolicLink(const std::filesystem::path& path) noexcept;

/// Returns whether both paths lead to the same item on disk, links followed.
[[nodiscard]] bool isSameItem(const std::filesystem::path& a,
                              const std::filesystem::path& b) noexcept;

/// Returns whether `path` is a regular file (links followed) that the current user may execute.
[[nodiscard]] bool isExecutableFile(const std::filesystem::path& path) noexcept;

/// Returns the names in a folder in the file system's order, including hidden ones but not "." and
/// "..". Returns std::nullopt if the folder is unreadable.
[[nodiscard]] std::optional<std::vector<std::string>>
directoryEntries(const std::filesystem::path& folder);

/// Creates the folder and its missing parents. An existing folder is fine. Throws `PlatformError`.
void createDirectories(const std::filesystem::path& folder);

/// Creates a folder with mode 0700. Throws `PlatformError`, also if anything is at `folder`.
void createPrivateFolder(const std::filesystem::path& folder);

/// Opens a regular file, created if missing, or a character device such as /dev/null for
/// appending. Returns std::nullopt if that fails.
[[nodiscard]] std::optional<FileHandle> openForAppending(const std::filesystem::path& path);

} // namespace quorvel

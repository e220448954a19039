#pragma once

#include "Platform/files/FileHandle.h"

#include <filesystem>
#include <optional>

namespace quorvel {

/// An exclusive lock on a file. It holds for as long as a copy of its descriptor is open, in this
/// process or in a child that was given one, and the system releases it with the last of them: a
/// crash leaves no lock behind.
class FileLock {
public:
    /// Locks the file, which is created (mode 0600) where it is missing, without waiting. Returns
    /// std::nullopt if somebody else holds the lock. Throws `PlatformError` if `path` is no regular
    /// file (a link is none), can't be opened, or lies on a file system without locks
    /// (`std::errc::no_lock_available` or `not_supported`).
    [[nodiscard]] static std::optional<FileLock> tryTake(const std::filesystem::path& path);

    /// Locks a folder itself in the same way; nothing has to be writable for that.
    [[nodiscard]] static std::optional<FileLock> tryTakeFolder(const std::filesystem::path& path);

    /// Whether somebody, this process too, holds a lock on the file or folder; false if it can't be
    /// opened. Nothing is created.
    [[nodiscard]] static bool isHeld(const std::filesystem::path& path);

    [[nodiscard]] int descriptor() const noexcept { return file_.descriptor(); }

private:
    explicit FileLock(FileHandle file) noexcept : file_(std::move(file)) {}

    FileHandle file_;
};

} // namespace quorvel

#pragma once

#include "Platform/files/FileHandle.h"

#include <chrono>
#include <filesystem>
#include <optional>

namespace quorvel {

/// A file that is open but not locked yet. A child that inherits the descriptor will share the
/// lock.
class PendingLock {
public:
    /// Opens the file, which is created with mode 0600 if it is missing. Throws `PlatformError` as
    /// `FileLock::tryTake` does.
    [[nodiscard]] static PendingLock onFile(const std::filesystem::path& path);

    /// Opens a folder, to lock it itself.
    [[nodiscard]] static PendingLock onFolder(const std::filesystem::path& path);

    /// Takes the lock, without waiting. Returns false if another process holds it, or if the item
    /// was removed or replaced since it was opened. Throws `PlatformError`.
    [[nodiscard]] bool tryTake();

    /// Releases the lock, if it was taken, for every process that shares it.
    void release() noexcept;

    [[nodiscard]] int descriptor() const noexcept { return file_.descriptor(); }

private:
    friend class FileLock;
    PendingLock(FileHandle file, std::filesystem::path path) noexcept
        : file_(std::move(file)),
          path_(std::move(path)) {}
    [[nodiscard]] bool lockNow() const;
    [[nodiscard]] bool isStillThere() const;

    FileHandle file_;
    std::filesystem::path path_;
};

/// An exclusive lock on a file. It is held as long as any copy of its descriptor is open, in this
/// process or in a child that inherited one. The system releases it when the last copy is closed,
/// so that a crash leaves no lock.
class FileLock {
public:
    /// Locks the file, which is created with mode 0600 if it is missing, without waiting. Returns
    /// std::nullopt if the lock is held already. Throws `PlatformError` if `path` is not a regular
    /// file (links are not followed), can't be opened, or is on a file system without locks
    /// (`std::errc::no_lock_available` or `not_supported`).
    [[nodiscard]] static std::optional<FileLock> tryTake(const std::filesystem::path& path);

    /// Locks a folder itself in the same way, without needing write permission.
    [[nodiscard]] static std::optional<FileLock> tryTakeFolder(const std::filesystem::path& path);

    /// Locks a folder itself, waiting at most `patience` for it. Returns std::nullopt if the lock
    /// is still held then.
    [[nodiscard]] static std::optional<FileLock> takeFolder(const std::filesystem::path& path,
                                                            std::chrono::milliseconds patience);

    /// Returns whether any process, including this one, holds a lock on the file or folder. Returns
    /// false if it can't be opened. Creates nothing.
    [[nodiscard]] static bool isHeld(const std::filesystem::path& path);

    [[nodiscard]] int descriptor() const noexcept { return file_.descriptor(); }

private:
    explicit FileLock(FileHandle file) noexcept : file_(std::move(file)) {}

    FileHandle file_;
};

} // namespace quorvel

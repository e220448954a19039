#pragma once

#include "Platform/files/FileHandle.h"

#include <filesystem>

namespace quorvel {

/// A folder that is filled under a temporary name beside its destination and only then gets its
/// name: at the destination is either nothing or all of it. It is locked as long as this exists,
/// also under its final name.
class StagedFolder {
public:
    /// Makes the empty folder, which only the user may enter, and the missing ones above it. Throws
    /// `PlatformError`.
    explicit StagedFolder(std::filesystem::path destination);
    StagedFolder(StagedFolder&& other) noexcept = default;
    StagedFolder& operator=(StagedFolder&&) = delete;
    StagedFolder(const StagedFolder&) = delete;
    StagedFolder& operator=(const StagedFolder&) = delete;
    /// Removes it if it was not published.
    ~StagedFolder();

    [[nodiscard]] int descriptor() const { return folder_.descriptor(); }

    /// Returns where it is now.
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    /// Flushes everything to disk, which may take long. Throws `PlatformError`.
    void flush() const;

    /// Moves the folder to its destination, in place of an empty folder at most. To be flushed
    /// before. Throws `PlatformError`, also if something else is there.
    void publish();

    /// Removes it from its destination again.
    void withdraw() noexcept;

    /// Removes a folder. What an interruption leaves of it, `removeAbandoned` finds. Never fails.
    static void discard(const std::filesystem::path& folder) noexcept;

    /// Removes what interrupted programs left in that folder. What may be in use, or can't be
    /// removed, stays. Never fails.
    static void removeAbandoned(const std::filesystem::path& parent) noexcept;

private:
    std::filesystem::path destination_;
    std::filesystem::path path_{}; ///< empty once there is nothing to remove
    FileHandle folder_{-1};
    bool isPublished_ = false;
};

} // namespace quorvel

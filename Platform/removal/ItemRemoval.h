#pragma once

#include "Platform/files/FileHandle.h"
#include "Platform/files/FolderWalk.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/files/MountBoundary.h"
#include "Platform/files/PlatformError.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// The result of a removal, in items; a folder counts as one.
struct RemovalReport {
    std::size_t removed = 0;
    std::size_t remaining = 0;              ///< not counting what unlistable folders contain
    std::optional<PlatformError> failure{}; ///< why the first of them remains

    [[nodiscard]] bool isComplete() const { return remaining == 0; }
};

/// The removal of one item; a folder with everything in it. The item is opened once, so that what
/// is checked is what is removed, even if it is swapped meanwhile. A symbolic link is removed, not
/// its target.
class ItemRemoval {
public:
    /// Opens the item at `path`. Returns std::nullopt if nothing is there. Throws `PlatformError`
    /// if that can't be determined, if the item is a user's home or a folder that contains one, or
    /// if the path contains a NUL or has no name ("/", "a/..").
    [[nodiscard]] static std::optional<ItemRemoval> of(const std::filesystem::path& path);

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] const ItemIdentity& identity() const { return identity_; }
    [[nodiscard]] bool isFolder() const { return isFolder_; }

    /// Searches the item for mount points, skipping folders that the user may not read. Throws
    /// `PlatformError` if there is one or the search fails.
    void refuseMounts() const;

    /// Throws `PlatformError` if it is certain that the item can't be removed: the user may not
    /// change its parent folder or a folder on the way to `kept`, or one of these is protected.
    void refuseUnchangeable(std::string_view kept = {}) const;

    /// Throws `PlatformError` if it is certain that something in the folder can't be removed: one
    /// of the folders in it may not be read or changed by the user, or something is protected.
    void refuseClosedFolders() const;

    /// Removes everything in the folder except the item at the relative path `kept` and the folders
    /// on the way to it. Continues if something can't be removed. Removes nothing if the item is
    /// not a folder. Returns what was removed and what remains.
    RemovalReport removeAllBut(std::string_view kept) const;

    /// Removes the item. Continues if something in it can't be removed. Returns what was removed
    /// and what remains.
    RemovalReport remove() const;

private:
    explicit ItemRemoval(std::filesystem::path path) : path_(std::move(path)) {}

    [[nodiscard]] bool findInParent();
    void openFolder();
    void refuseClosedWayTo(std::string_view kept) const;
    struct Pass;
    [[nodiscard]] RemovalReport inPasses(std::string_view kept, bool withItself) const;
    void removeContents(std::string_view kept, Pass& pass) const;
    void removeItself(Pass& pass) const;
    [[nodiscard]] PlatformError failureAt(const std::string& below, int error) const;
    void refuseProtected(int folder, const char* name, const std::filesystem::path& below) const;
    [[noreturn]] void refuseMountAt(const std::string& below) const;

    std::filesystem::path path_; ///< without a trailing slash
    std::string name_{};         ///< in its parent folder
    FileHandle parent_{-1};
    FileHandle folder_{-1}; ///< closed for an unreadable folder
    ItemIdentity identity_{};
    Mount mount_{}; ///< of its parent folder
    bool isFolder_ = false;
    bool isMountPoint_ = false;
};

} // namespace quorvel

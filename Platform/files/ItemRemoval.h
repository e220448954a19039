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

/// What became of the items that were to be removed; a folder counts as one.
struct RemovalReport {
    std::size_t removed = 0;
    std::size_t remaining = 0; ///< what a folder that can't be looked into holds is not counted
    std::optional<PlatformError> failure{}; ///< why the first of them remains

    [[nodiscard]] bool isComplete() const { return remaining == 0; }
};

/// The removal of one item, a folder with everything in it. The item is opened once: what is asked
/// here and what is removed is the same, whatever is put in its place meanwhile. A symbolic link is
/// removed, not what it points to.
class ItemRemoval {
public:
    /// Opens the item; nothing when nothing is there. Throws `PlatformError` when that can't be
    /// told, for a user's home or a folder that holds one, and for a path with a NUL or without a
    /// name ("/", "a/..").
    [[nodiscard]] static std::optional<ItemRemoval> of(const std::filesystem::path& path);

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] const ItemIdentity& identity() const { return identity_; }
    [[nodiscard]] bool isFolder() const { return isFolder_; }

    /// Looks through everything for a place where another file system, or another folder, is
    /// mounted, and throws `PlatformError` for it, and when not everything can be looked through.
    /// Folders that the user may not read are left out.
    void refuseMounts() const;

    /// Throws `PlatformError` when it is plain beforehand that the item can't be removed: the
    /// folder that holds it can't be changed, nor can those on the way to `kept`, or one of the
    /// items is protected.
    void refuseUnchangeable(std::string_view kept = {}) const;

    /// Removes everything in the folder but the item at the relative path `kept` and the folders on
    /// the way to it. Goes on where something can't be removed. Of an item that is no folder,
    /// nothing goes.
    RemovalReport removeAllBut(std::string_view kept) const;

    /// Removes the item. Goes on where something in it can't be removed.
    RemovalReport remove() const;

private:
    explicit ItemRemoval(std::filesystem::path path) : path_(std::move(path)) {}

    struct Pass;
    [[nodiscard]] RemovalReport inPasses(std::string_view kept, bool withItself) const;
    void removeContents(std::string_view kept, Pass& pass) const;
    void removeItself(Pass& pass) const;
    [[nodiscard]] PlatformError failureAt(const std::string& below, int error) const;
    void refuseProtected(int folder, const char* name, const std::filesystem::path& below) const;
    [[noreturn]] void refuseMountAt(const std::string& below) const;

    std::filesystem::path path_; ///< without a slash at its end
    std::string name_{};         ///< in the folder that holds it
    FileHandle parent_{-1};
    FileHandle folder_{-1}; ///< not open for a folder that can't be read
    ItemIdentity identity_{};
    Mount mount_{}; ///< of the folder that holds it
    bool isFolder_ = false;
    bool isMountPoint_ = false;
};

} // namespace quorvel

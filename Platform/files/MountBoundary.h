#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

/// Detects mount points relative to open folders, so that nothing can be swapped between the check
/// and its use.
namespace quorvel {

/// The mount that an item is on, to be compared with others.
struct Mount {
    std::uint64_t id = 0;
    bool isDevice = false; ///< `id` is the device's, because the mount's is unavailable

    bool operator==(const Mount&) const = default;
};

/// Opens a folder (links followed) for looking up names in it, which needs no permission to list
/// it. Returns a descriptor, or -1 with `errno`.
[[nodiscard]] int openFolderForNames(const std::filesystem::path& path);

/// Returns the mount of an open item, or std::nullopt with `errno` if it can't be determined.
[[nodiscard]] std::optional<Mount> mountOf(int descriptor);

/// Returns the mount of the item `name` in an open folder, not following a link, or std::nullopt
/// with `errno`. It differs from the folder's if something is mounted on the item.
[[nodiscard]] std::optional<Mount> mountOf(int folder, const char* name);

/// Opens the folder `name` in an open folder for reading. Returns a descriptor, or -1 with `errno`:
/// EXDEV if it is not on `mount`, ENOTDIR or ELOOP if it is not a folder.
[[nodiscard]] int openFolderOnMount(int folder, const char* name, const Mount& mount);

/// Opens the file `name` in an open folder for reading, without waiting for the other end of a
/// FIFO. Returns a descriptor, or -1 with `errno`: EXDEV if it is not on `mount`, ELOOP if it is a
/// link.
[[nodiscard]] int openFileOnMount(int folder, const char* name, const Mount& mount);

} // namespace quorvel

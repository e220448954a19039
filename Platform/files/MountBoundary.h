#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

/// Where mounts begin, asked of open folders, so that nothing can be swapped between the question
/// and what follows from the answer.
namespace quorvel {

/// The mount that an item lies on, to be compared with others.
struct Mount {
    std::uint64_t id = 0;
    bool isDevice = false; ///< the system gives no mount's id, so this is the device's

    bool operator==(const Mount&) const = default;
};

/// Opens a folder (links followed) so that items in it can be named, though perhaps not listed.
/// Gives a descriptor, or -1 and `errno`.
[[nodiscard]] int openFolderForNames(const std::filesystem::path& path);

/// The mount of what is open; nothing, with `errno`, when the system can't tell.
[[nodiscard]] std::optional<Mount> mountOf(int descriptor);

/// The mount of the item `name` in an open folder, a link itself not followed: another one than the
/// folder's when something is mounted on it.
[[nodiscard]] std::optional<Mount> mountOf(int folder, const char* name);

/// Opens the folder `name` in an open folder for reading, if it is one and lies on `mount`. Gives a
/// descriptor, or -1 and `errno`: EXDEV for another mount, ENOTDIR or ELOOP for no folder.
[[nodiscard]] int openFolderOnMount(int folder, const char* name, const Mount& mount);

} // namespace quorvel

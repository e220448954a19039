#pragma once

#include <filesystem>

/// Moving a data folder while a configuration changes from its old path to its new one. The
/// configuration's path leads to the data at every moment, except between two renames on a file
/// system that can't exchange items.
namespace quorvel {

/// Makes `newHome` a link to the folder `home`. Throws `PlatformError`, also if anything is at
/// `newHome`, or if `home` is not a folder that can be moved there by renaming.
void prepareHomeMove(const std::filesystem::path& home, const std::filesystem::path& newHome);

/// Puts the folder in the place of the link, however far an interrupted call came. Throws
/// `PlatformError`; the folder is still at `home` then. A link that remains at `home`, since it
/// couldn't be removed, is removed by the next call.
void completeHomeMove(const std::filesystem::path& home, const std::filesystem::path& newHome);

/// Removes the link that `prepareHomeMove` made, if it is there.
void cancelHomeMove(const std::filesystem::path& home,
                    const std::filesystem::path& newHome) noexcept;

} // namespace quorvel

#pragma once

#include <array>
#include <ctime>
#include <sys/stat.h>

/// The system-specific parts of copying an item to another file system.
namespace quorvel::VolumeTransfer {

/// Returns the times of the last access and the last modification, in the form of `futimens`.
[[nodiscard]] std::array<timespec, 2> datesIn(const struct stat& status);

/// Returns the time of the last change of the item itself or of its attributes.
[[nodiscard]] timespec changeIn(const struct stat& status);

/// Copies the extended attributes and the access list of the open item `from` to the open item
/// `to`. Returns false, with `errno`, if one of the user's own attributes can't be copied; the
/// system's are copied where possible.
[[nodiscard]] bool copyExtendedAttributes(int from, int to);

/// Flushes the file system of an open item to disk. Returns false, with `errno`, if that fails.
[[nodiscard]] bool flushFileSystem(int descriptor);

} // namespace quorvel::VolumeTransfer

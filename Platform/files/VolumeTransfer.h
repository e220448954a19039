#pragma once

#include <array>
#include <ctime>
#include <sys/stat.h>

/// What carrying an item from one file system to another takes that every system spells in its own
/// way.
namespace quorvel::VolumeTransfer {

/// When the item was last read and last changed, as `futimens` takes it.
[[nodiscard]] std::array<timespec, 2> datesIn(const struct stat& status);

/// Gives `to` the extended attributes and the access list of `from`, both open. False, with
/// `errno`, when one of the user's own attributes can't be kept there; those that the system sets
/// for itself are carried where that is possible.
[[nodiscard]] bool copyExtendedAttributes(int from, int to);

/// Has everything written to the file system of an open item reach its disk. False, with `errno`,
/// when that fails.
[[nodiscard]] bool flushFileSystem(int descriptor);

} // namespace quorvel::VolumeTransfer

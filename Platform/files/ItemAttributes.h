#pragma once

#include <sys/stat.h>

/// What a copy of an item takes over from its original, besides the bytes.
namespace quorvel {

/// Returns the mode for a copy of an item with the status `original`. The set-user-ID and
/// set-group-ID bits are dropped if the copy has another owner or group.
[[nodiscard]] mode_t modeOfCopy(const struct stat& original, bool sameOwner);

/// Gives the open item `copy` the owner, group, extended attributes and mode of the open item
/// `original`, whose status is `facts`. Owner and group that the system does not allow are left as
/// they are. Returns false if one of the others can't be set (`errno` says why).
[[nodiscard]] bool copyAttributes(int original, int copy, const struct stat& facts);

} // namespace quorvel

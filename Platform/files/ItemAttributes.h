#pragma once

#include <sys/stat.h>

/// The attributes that a copy of an item takes over from its original.
namespace quorvel {

/// Returns the mode for a copy of an item with the status `original`. The set-user-ID and
/// set-group-ID bits are dropped if the copy has another owner or group.
[[nodiscard]] mode_t modeOfCopy(const struct stat& original, bool sameOwner);

/// Sets the owner, group, extended attributes and mode of the open item `copy` to those of the open
/// item `original`, whose status is `facts`. Leaves an owner or group unchanged if the system does
/// not permit setting it. Returns false if one of the others can't be set (`errno` says why).
[[nodiscard]] bool copyAttributes(int original, int copy, const struct stat& facts);

} // namespace quorvel

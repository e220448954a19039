#pragma once

#include "Platform/files/FileHandle.h"

#include <cstddef>
#include <sys/types.h>

/// Copying that the file system does itself.
namespace quorvel {

/// Makes the file `name` in an open folder a clone of the open regular file `from`: a file of its
/// own that shares its blocks with it until one of them is written. Returns the new file, open, or
/// a handle that is not open if the file system can't do that (`errno` says why); nothing is at
/// `name` then.
[[nodiscard]] FileHandle cloneFile(int from, int folder, const char* name);

/// Returns whether this `errno` of `cloneFile` means that no other file can be cloned to that
/// folder either.
[[nodiscard]] bool meansNoCloning(int error);

/// Copies up to that many bytes to the same place in another open file, without passing them
/// through this program. Returns how many were copied; 0 or -1 if the system can't do that.
[[nodiscard]] ssize_t copyRange(int from, int to, off_t offset, std::size_t count);

} // namespace quorvel

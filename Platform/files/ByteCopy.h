#pragma once

#include "Platform/files/FileHandle.h"

namespace quorvel {

/// Copies the bytes of an open regular file into an empty one. Holes are kept where the file
/// systems support them. Returns false if that fails (`errno` says why).
[[nodiscard]] bool copyBytes(const FileHandle& from, const FileHandle& to);

} // namespace quorvel

#pragma once

#include "Platform/files/FileHandle.h"

namespace quorvel {

/// Copies the bytes of an open regular file into an empty one; its holes stay holes where the file
/// systems know them. False when that fails (`errno` says why).
[[nodiscard]] bool copyBytes(const FileHandle& from, const FileHandle& to);

} // namespace quorvel

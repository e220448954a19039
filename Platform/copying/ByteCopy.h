#pragma once

#include "Platform/files/FileHandle.h"

#include <cstddef>
#include <functional>

namespace quorvel {

/// Copies the bytes of an open regular file into an empty one. Holes are kept where the file
/// systems support them. Calls `copied` repeatedly, with the number of bytes copied since the last
/// call; what it throws ends the copy and is passed on. Returns false if the copy fails (`errno`
/// says why).
[[nodiscard]] bool copyBytes(const FileHandle& from, const FileHandle& to,
                             const std::function<void(std::size_t)>& copied = {});

} // namespace quorvel

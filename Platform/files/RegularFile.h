#pragma once

#include "Platform/files/FileHandle.h"

#include <cstddef>
#include <fcntl.h>
#include <string>
#include <sys/types.h>

namespace quorvel {

/// An open regular file with the size that it had when it was opened.
struct RegularFile {
    FileHandle handle{-1};
    std::size_t size = 0;

    [[nodiscard]] bool isOpen() const { return handle.descriptor() >= 0; }
    [[nodiscard]] int descriptor() const { return handle.descriptor(); }
};

/// Opens a regular file (links followed) without ever waiting for the other end of a FIFO. A
/// relative `path` is looked up in the open folder `folder`. The result is not open if that fails
/// or if something else is there (`errno` says why).
[[nodiscard]] RegularFile openRegularFile(const std::string& path, int flags, mode_t mode = 0,
                                          int folder = AT_FDCWD);

} // namespace quorvel

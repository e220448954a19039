#pragma once

#include "Platform/files/FileHandle.h"

#include <filesystem>
#include <string>

namespace quorvel {

/// The ends of a pipe, which children don't inherit.
struct Pipe {
    FileHandle reading;
    FileHandle writing;
};

/// Returns a new pipe. Throws `PlatformError` if that fails, which says that `path` couldn't be
/// `action`, such as "started".
[[nodiscard]] Pipe openPipe(const std::filesystem::path& path, const std::string& action);

} // namespace quorvel

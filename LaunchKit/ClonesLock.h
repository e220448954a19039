#pragma once

#include "Platform/files/FileLock.h"

#include <filesystem>
#include <optional>

namespace quorvel {

/// Locks a folder of clones for a change, waiting for other changes, and puts right what an
/// interrupted one left there. Returns std::nullopt if the folder is missing or can't be locked:
/// not every file system has locks. Throws `InvalidRequest` if another change takes too long.
[[nodiscard]] std::optional<FileLock> lockClones(const std::filesystem::path& folder);

} // namespace quorvel

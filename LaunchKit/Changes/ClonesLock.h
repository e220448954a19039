#pragma once

#include "Platform/files/FileLock.h"

#include <filesystem>
#include <optional>

namespace quorvel {

/// Locks a folder of clones for a change, waiting for other changes, and puts right what an
/// interrupted one left there. Returns std::nullopt if the folder is missing or can't be locked:
/// not every file system has locks. Throws `InvalidRequest` if another change takes too long.
[[nodiscard]] std::optional<FileLock> lockClones(const std::filesystem::path& folder);

/// The same without putting anything right, for a caller that did so in the folder shortly before.
[[nodiscard]] std::optional<FileLock> lockTidyClones(const std::filesystem::path& folder);

} // namespace quorvel

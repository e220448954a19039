#pragma once

#include <filesystem>

/// Tells wrappers that are no readable clones from what is somebody's own.
namespace quorvel {

/// Whether it is what a generation that failed half-way leaves behind, a full disk's for one: it
/// may be replaced like a whole clone.
[[nodiscard]] bool isUnfinishedWrapper(const std::filesystem::path& wrapper);

/// Whether it is a whole wrapper, with nothing else in it, whose configuration can't be read
/// or is missing.
[[nodiscard]] bool isDamagedWrapper(const std::filesystem::path& wrapper);

} // namespace quorvel

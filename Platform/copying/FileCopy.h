#pragma once

#include <filesystem>

namespace quorvel {

/// Copies the bytes and the permissions of a regular file (links followed). Throws `PlatformError`,
/// also if anything is at `destination`.
void copyFile(const std::filesystem::path& source, const std::filesystem::path& destination);

} // namespace quorvel

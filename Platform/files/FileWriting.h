#pragma once

#include <filesystem>
#include <string_view>

namespace quorvel {

/// Writes a regular file. An existing one (links followed) is replaced as a whole: the new bytes
/// are flushed to a temporary file beside it, which is then renamed to its name. It keeps its mode,
/// its extended attributes and, where the system allows it, its owner and group; its other hard
/// links keep the old bytes. A new file is written under its own name. Throws `PlatformError`; then
/// an existing file is unchanged, and nothing is left of a new one.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

} // namespace quorvel

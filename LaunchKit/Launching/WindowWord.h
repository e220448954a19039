#pragma once

#include <filesystem>
#include <string>

namespace quorvel {

/// Returns the path that identifies a clone: that of its wrapper, absolute and without links. Ask
/// before the wrapper is removed.
[[nodiscard]] std::string cloneIdentity(const std::filesystem::path& wrapper);

/// Returns the one word by which a desktop matches the clone's windows to its menu entry. It begins
/// with a capital, as toolkits would make it anyway, and no two clones share it.
[[nodiscard]] std::string windowWord(const std::string& identity);

} // namespace quorvel

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quorvel {

/// Returns the folders that hold any user's files and settings (Documents, .ssh and so on), under
/// their names on this system, for each home that may be the user's. They need not exist.
[[nodiscard]] std::vector<std::filesystem::path> userFolders();

/// Returns those folders in `home` whose names the desktop has changed.
[[nodiscard]] std::vector<std::filesystem::path> renamedUserFolders(const std::string& home);

} // namespace quorvel

#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Returns the folders that hold any user's files and settings (Documents, .ssh and so on), under
/// their names on this system, for each home that may be the user's. They need not exist.
[[nodiscard]] std::vector<std::filesystem::path> userFolders();

/// Returns the user's own folder of that kind ("Downloads", "Documents" or "Desktop") in `home`,
/// under the name that the desktop gives it. It need not exist.
[[nodiscard]] std::string userFolder(std::string_view kind, const std::string& home);

/// Returns those folders in `home` whose names the desktop has changed.
[[nodiscard]] std::vector<std::filesystem::path> renamedUserFolders(const std::string& home);

} // namespace quorvel

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quorvel {

/// The folders in which desktop entries are installed, the most important first.
[[nodiscard]] std::vector<std::filesystem::path> applicationEntryFolders();

/// Returns the id of the entry in that file: in a folder of applications its path from there, with
/// "-" for "/", elsewhere its name. "kde/app.desktop" has the id "kde-app.desktop".
[[nodiscard]] std::string desktopFileId(const std::filesystem::path& file);

} // namespace quorvel

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quorvel {

/// Returns the folders in which desktop entries are installed, the most important first. Empty on
/// macOS.
[[nodiscard]] std::vector<std::filesystem::path> applicationEntryFolders();

/// Returns the id of the entry in that file: in a folder of applications its path from there, with
/// "-" for "/", elsewhere its name. "kde/app.desktop" has the id "kde-app.desktop".
[[nodiscard]] std::string desktopFileId(const std::filesystem::path& file);

/// Returns whether the session's bus can start an application with this name: a file
/// "dbus-1/services/NAME.service" in one of the folders of data says so. Folders that don't answer
/// within two seconds are left out. On macOS there is no such bus.
[[nodiscard]] bool hasBusService(const std::string& name);

} // namespace quorvel

#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace quorvel {

/// The value of an empty `XDG_DATA_DIRS`.
inline constexpr std::string_view defaultXdgDataDirs = "/usr/local/share:/usr/share";

/// Returns `XDG_CONFIG_HOME` if it is an absolute path, else ".config" in the user's home.
[[nodiscard]] std::filesystem::path xdgConfigHome();

/// Returns `XDG_DATA_HOME` if it is an absolute path, else ".local/share" in the user's home.
[[nodiscard]] std::filesystem::path xdgDataHome();

/// Returns the folders below which applications and icons are installed, the user's own first:
/// `xdgDataHome()`, each folder of `XDG_DATA_DIRS` (`defaultXdgDataDirs` if it is empty), and what
/// Flatpak and Snap export to, which a session may have left out. Each is returned once; they need
/// not exist.
[[nodiscard]] std::vector<std::filesystem::path> xdgDataFolders();

/// Returns the folders of settings: `XDG_CONFIG_HOME` (".config" in the user's home if it is not an
/// absolute path) and each folder of `XDG_CONFIG_DIRS` ("/etc/xdg" if it is empty). Each is
/// returned once.
[[nodiscard]] std::vector<std::filesystem::path> xdgConfigFolders();

} // namespace quorvel

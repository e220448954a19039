#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quorvel {

/// One of the user's special folders, as `user-dirs.dirs` names them.
struct XdgUserDir {
    std::string name{};   ///< "DOWNLOAD" for `XDG_DOWNLOAD_DIR`
    std::string folder{}; ///< absolute, or beginning with "$HOME"

    bool operator==(const XdgUserDir&) const = default;
};

/// Returns the folders that a `user-dirs.dirs` names, in its order; other lines are ignored.
[[nodiscard]] std::vector<XdgUserDir> parseXdgUserDirs(const std::string& text);

/// Returns the folders that the file "user-dirs.dirs" in a folder of settings names; none if it
/// can't be read.
[[nodiscard]] std::vector<XdgUserDir> readXdgUserDirs(const std::filesystem::path& settings);

/// Returns the text of a `user-dirs.dirs` that names these folders.
[[nodiscard]] std::string xdgUserDirsText(const std::vector<XdgUserDir>& folders);

/// Returns `folder` with a leading "$HOME" replaced by `home`.
[[nodiscard]] std::string withHomeExpanded(const std::string& folder, const std::string& home);

} // namespace quorvel

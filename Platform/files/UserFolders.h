#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quorvel {

/// The folders in which every user's files and settings are: Documents, .ssh and the like, under
/// the names that they have here, for each home that may be the user's. They need not exist.
[[nodiscard]] std::vector<std::filesystem::path> userFolders();

/// Of these, the ones that the desktop has given other names than the usual.
[[nodiscard]] std::vector<std::filesystem::path> renamedUserFolders(const std::string& home);

} // namespace quorvel

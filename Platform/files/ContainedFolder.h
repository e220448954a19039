#pragma once

#include <filesystem>
#include <string_view>

namespace quorvel {

/// Creates the folder `path` and its missing parents if it lies below the existing folder `base`,
/// spelled as `base` + "/" + names. Follows no link below `base` and rejects "..", so that nothing
/// is created outside `base`. New folders have mode 0700. Returns whether the folder exists
/// afterwards.
bool ensureFolderBelow(const std::filesystem::path& base, std::string_view path);

} // namespace quorvel

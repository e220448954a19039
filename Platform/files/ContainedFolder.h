#pragma once

#include <filesystem>
#include <string_view>

namespace quorvel {

/// Makes the folder `path`, with the missing ones above it, if it lies below the existing folder
/// `base`, spelt as `base` + "/" + names. No link on the way is followed and ".." is not accepted,
/// so nothing is made outside `base`. New folders have mode 0700. Returns whether the folder is
/// there afterwards.
bool ensureFolderBelow(const std::filesystem::path& base, std::string_view path);

} // namespace quorvel

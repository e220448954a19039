#pragma once

#include "Platform/files/FileHandle.h"

#include <filesystem>
#include <string_view>

/// Writing below a folder whose contents others may have put there. No link below it is followed.
namespace quorvel {

/// Creates the folder `path` and its missing parents if it lies below the existing folder `base`,
/// spelled as `base` + "/" + names. Follows no link below `base` and rejects "..", so that nothing
/// is created outside `base`. New folders have mode 0700. Returns whether the folder exists
/// afterwards.
bool ensureFolderBelow(const std::filesystem::path& base, std::string_view path);

/// Makes the regular file `path` below `base` contain `bytes`, with mode 0600, creating missing
/// folders as `ensureFolderBelow` does. An item at `path` is replaced as a whole, a link
/// itself and not its target; a folder is not. Returns whether that succeeded; if not, what was
/// there remains.
bool replaceFileBelow(const std::filesystem::path& base, std::string_view path,
                      std::string_view bytes);

/// Makes `path` below `base` a symbolic link to `target` in the same way.
bool replaceLinkBelow(const std::filesystem::path& base, std::string_view path,
                      const std::filesystem::path& target);

} // namespace quorvel

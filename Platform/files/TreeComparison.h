#pragma once

#include "Platform/files/PlatformError.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Looks for a change that the item `name` in the open folder `originals` saw since it was copied
/// to the same name in the open folder `copies`: sizes and dates differ then. Returns the path,
/// relative to those folders, of the first difference, or of what can't be compared; std::nullopt
/// if there is none.
[[nodiscard]] std::optional<std::filesystem::path> changeSinceCopy(int originals, int copies,
                                                                   const std::string& name);

/// The error for such a change in `item`; `changed` is relative to the folder that holds `item`.
[[nodiscard]] PlatformError changedWhileCopied(const std::filesystem::path& changed,
                                               const std::filesystem::path& item);

} // namespace quorvel

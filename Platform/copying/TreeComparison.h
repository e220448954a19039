#pragma once

#include "Platform/files/PlatformError.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Compares the item `name` in the open folder `originals` with its copy of the same name in the
/// open folder `copies`, by sizes and dates. Returns the path, relative to those folders, of the
/// first item that differs or can't be compared, or std::nullopt if there is none.
[[nodiscard]] std::optional<std::filesystem::path> changeSinceCopy(int originals, int copies,
                                                                   const std::string& name);

/// Returns the error for such a change in `item`. `changed` is relative to the folder that contains
/// `item`.
[[nodiscard]] PlatformError changedWhileCopied(const std::filesystem::path& changed,
                                               const std::filesystem::path& item);

} // namespace quorvel

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Compares the item `name` in the open folder `originals` with its copy of the same name in the
/// open folder `copies`, by sizes and dates. Returns the path, relative to those folders, of the
/// first item that differs or can't be compared, or std::nullopt if there is none.
[[nodiscard]] std::optional<std::filesystem::path> changeSinceCopy(int originals, int copies,
                                                                   const std::string& name);

} // namespace quorvel

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Returns the absolute path of an existing item, without links and "..". Returns std::nullopt if
/// nothing is there.
[[nodiscard]] std::optional<std::string> resolvedPath(const std::filesystem::path& path);

} // namespace quorvel

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Returns the absolute path of an existing item, without links and "..". std::nullopt if there is
/// none.
[[nodiscard]] std::optional<std::string> resolvedPath(const std::filesystem::path& path);

} // namespace quorvel

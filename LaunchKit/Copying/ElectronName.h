#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Returns the name under which an Electron application keeps its data, according to its package,
/// which is in the folder of its program; std::nullopt if there is none that can be read.
[[nodiscard]] std::optional<std::string> electronName(const std::filesystem::path& folder);

} // namespace quorvel

#pragma once

#include <filesystem>

namespace quorvel {

/// Returns whether the file is an icon container (.icns) with a picture that can be drawn. Decodes
/// one picture. Any thread.
[[nodiscard]] bool isDrawableIcon(const std::filesystem::path& file);

} // namespace quorvel

#pragma once

#include <filesystem>

namespace quorvel {

/// Asks the desktop's file manager over D-Bus to show the item. Throws `PlatformError` if none
/// replies.
void showInFileManager(const std::filesystem::path& item);

} // namespace quorvel

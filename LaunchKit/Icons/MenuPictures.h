#pragma once

#include "Platform/desktop/MenuEntry.h"

#include <filesystem>
#include <vector>

namespace quorvel {

/// Returns an icon file's picture as the user's menu wants it: PNGs of 48, 128 and 256 pixels.
/// Pictures that are not square are centered. Returns none if the file can't be read as a picture.
/// Any thread.
[[nodiscard]] std::vector<MenuPicture> menuPictures(const std::filesystem::path& icon);

} // namespace quorvel

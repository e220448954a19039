#pragma once

#include "Platform/entries/MenuEntry.h"

#include <array>
#include <filesystem>
#include <vector>

namespace quorvel {

/// The sizes of the pictures that are always published, in pixels.
inline constexpr std::array menuPictureSides{48, 128, 256};

/// Returns an icon file's picture as the user's menu wants it: PNGs of `menuPictureSides`, and if
/// `isSymbolic`, a drawing in one color. Pictures that are not square are centered. Returns none if
/// the file can't be read as a picture. Any thread.
[[nodiscard]] std::vector<MenuPicture> menuPictures(const std::filesystem::path& icon,
                                                    bool isSymbolic);

} // namespace quorvel

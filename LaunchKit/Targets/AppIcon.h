#pragma once

#include "LaunchKit/AppBundle.h"

#include <filesystem>
#include <optional>

namespace quorvel {

/// Returns the icon file of an application: of a bundle an icon container, of a desktop entry a PNG
/// or SVG file from the icon theme. `std::nullopt` if it names none that exists.
[[nodiscard]] std::optional<std::filesystem::path> appIconFile(const AppBundle& app);

/// Returns the same for the application at `url`; `std::nullopt` if it can't be read.
[[nodiscard]] std::optional<std::filesystem::path> appIconFile(const std::filesystem::path& url);

} // namespace quorvel

#pragma once

#include <filesystem>
#include <optional>

namespace quorvel {

/// Returns the folder of the profile that Firefox, or a relative of it, opens by default, according
/// to "profiles.ini" in this folder: the one of its installation, if there is only one; otherwise
/// the one marked as the default, or the only one. Returns std::nullopt if that is ambiguous or the
/// profile's folder is missing.
[[nodiscard]] std::optional<std::filesystem::path>
defaultFirefoxProfile(const std::filesystem::path& folder);

} // namespace quorvel

#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quorvel::testing {

/// Runs `check` in a child process where a private tmpfs with these options ("size=64k") is mounted
/// over `folder`. Returns the problem that `check` names (empty for none), or `std::nullopt` if the
/// kernel forbids private mounts.
[[nodiscard]] std::optional<std::string> onSmallDisk(const std::filesystem::path& folder,
                                                     const std::string& options,
                                                     const std::function<std::string()>& check);

} // namespace quorvel::testing

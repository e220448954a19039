#pragma once

#include <optional>
#include <string>

namespace quorvel {

/// Returns the program to start for links that are to open as `links` says (`CloneOptions::links`):
/// the runner of the chosen clone, or an empty text if no clone is chosen. If there is no such
/// clone, that can't be started.
[[nodiscard]] std::string linkOpenerProgram(const std::optional<std::string>& links);

} // namespace quorvel

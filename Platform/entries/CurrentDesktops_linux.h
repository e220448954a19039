#pragma once

#include <string>
#include <vector>

namespace quorvel {

/// Returns the names of the running desktop (`XDG_CURRENT_DESKTOP`), the most specific first.
[[nodiscard]] std::vector<std::string> currentDesktops();

} // namespace quorvel

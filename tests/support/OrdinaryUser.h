#pragma once

#include <filesystem>
#include <functional>

namespace quorvel::testing {

/// Runs `check` in a child process that permissions bind, with `folder` (a temporary one)
/// given to its user: root passes over them, so it becomes "nobody" there. True when `check` gives
/// true. `check` must use no assertions: nobody hears them.
[[nodiscard]] bool asOrdinaryUser(const std::filesystem::path& folder,
                                  const std::function<bool()>& check);

} // namespace quorvel::testing

#pragma once

#include <filesystem>
#include <functional>

namespace quorvel::testing {

/// Runs `check` in a child process that permissions apply to: as root, that is one of the user
/// "nobody", to whom `folder` (a temporary one) is given. Returns what `check` returned, and false
/// if it threw. Assertions of the test framework have no effect in `check`.
[[nodiscard]] bool asUnprivilegedUser(const std::filesystem::path& folder,
                                      const std::function<bool()>& check);

} // namespace quorvel::testing

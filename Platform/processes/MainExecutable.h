#pragma once

#include <filesystem>

namespace quorvel {

/// Returns the path of the running program's file, links resolved, or an empty path if the system
/// does not report it.
[[nodiscard]] std::filesystem::path mainExecutable();

} // namespace quorvel

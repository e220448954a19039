#pragma once

#include <filesystem>

namespace quorvel {

/// The path of the running program's file, links resolved. Empty when the system does not tell.
[[nodiscard]] std::filesystem::path mainExecutable();

} // namespace quorvel

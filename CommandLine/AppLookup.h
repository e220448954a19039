#pragma once

#include <filesystem>
#include <string>

namespace quorvel {

/// Resolves words to an application and returns its path. The words are a path, or else the id
/// (with or without ".desktop") or the name of an installed application; if nothing fits, they are
/// returned as a path. Throws `CommandError` if several applications have the name; its text lists
/// their paths.
[[nodiscard]] std::filesystem::path findApp(const std::string& words);

} // namespace quorvel

#pragma once

#include <filesystem>
#include <string>

namespace quorvel {

/// Resolves words to an application: a path, or else the id (with or without ".desktop") or the
/// name of an installed one. Words that are none of these count as a path to something missing.
/// Throws `CommandError` if several applications have the name; its text lists their paths.
[[nodiscard]] std::filesystem::path findApp(const std::string& words);

} // namespace quorvel

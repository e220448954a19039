#pragma once

#include <filesystem>
#include <string>

/// How the words of a command line become paths.
namespace quorvel {

/// Returns whether the words are a path, existing or not: they begin with "/", "~", "./" or "../".
[[nodiscard]] bool isPath(const std::string& words);

/// Returns `path` unchanged if it begins with "~" or is empty; otherwise made absolute, without "."
/// and ".." and without a trailing slash. ".." is resolved as the system does, following links.
[[nodiscard]] std::filesystem::path absolutePath(const std::string& path);

/// Returns the `absolutePath` with "~" expanded.
[[nodiscard]] std::filesystem::path absoluteFile(const std::string& path);

} // namespace quorvel

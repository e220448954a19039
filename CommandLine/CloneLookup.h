#pragma once

#include "LaunchKit/InstanceRegistry.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Resolves a path to a wrapper, or a display name among the listed clones, to a clone. Throws
/// `CommandError` if there is none, or if several have the name; the text then has their paths.
[[nodiscard]] InstanceRecord findClone(const InstanceRegistry& registry, const std::string& words);

/// Returns the wrapper at that path if its configuration can't be read, so that `findClone` does
/// not find it; otherwise std::nullopt.
[[nodiscard]] std::optional<std::filesystem::path> findDamagedClone(const std::string& words);

/// Returns `path` unchanged if it begins with "~" or is empty, else absolute, without "." and "..",
/// and without a slash at its end. ".." leads where the system would go, following links.
[[nodiscard]] std::filesystem::path absolutePath(const std::string& path);

/// Returns the same path with "~" expanded.
[[nodiscard]] std::filesystem::path absoluteFile(const std::string& path);

} // namespace quorvel

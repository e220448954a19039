#pragma once

#include "LaunchKit/InstanceRegistry.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// The clone that a person means: a path to a wrapper, or a display name among the listed clones.
/// Throws `CommandError` when there is none, or when several bear the name, with their paths.
[[nodiscard]] InstanceRecord findClone(const InstanceRegistry& registry, const std::string& words);

/// The wrapper at that path when it is one whose configuration can't be read, so that it is found
/// neither by name nor as a clone.
[[nodiscard]] std::optional<std::filesystem::path> findDamagedClone(const std::string& words);

/// `path` as it stands when it begins with "~", else made absolute, without "." and "..", and
/// without a slash at its end. ".." leads where the system would go, links followed.
[[nodiscard]] std::filesystem::path absolutePath(const std::string& path);

/// The file that the words name now: absolute, with "~" expanded.
[[nodiscard]] std::filesystem::path absoluteFile(const std::string& path);

} // namespace quorvel

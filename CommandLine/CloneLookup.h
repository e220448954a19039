#pragma once

#include "LaunchKit/InstanceRegistry.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Resolves a path to a wrapper, or a display name among the listed clones, to a clone. Throws
/// `CommandError` if there is none, or if several have the name; its text then lists their paths.
[[nodiscard]] InstanceRecord findClone(const InstanceRegistry& registry, const std::string& words);

/// Returns the value of `CloneOptions::links` for the words of `--links`: `std::nullopt` for the
/// default browser. For another clone, named by its identifier or as for `findClone`, it is the
/// path, since a second clone may take the name later. Throws as `findClone` does.
[[nodiscard]] std::optional<std::string> linksChoice(const InstanceRegistry& registry,
                                                     const std::optional<std::string>& words);

/// Returns the wrapper at that path if its configuration can't be read, so that `findClone` does
/// not find it; otherwise `std::nullopt`, also if a listed clone has these words as its name.
[[nodiscard]] std::optional<std::filesystem::path>
findDamagedClone(const InstanceRegistry& registry, const std::string& words);

} // namespace quorvel

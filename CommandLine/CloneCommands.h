#pragma once

#include "CommandLine/CommandContext.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// The commands of `quorvelctl` about clones. Each prints its result, and throws `CommandError`,
/// `UsageError` or an error of the layers below if it fails.
namespace quorvel {

struct InstanceRecord;

/// Prints the facts about an application bundle.
void inspectCommand(const CommandContext& context, const std::string& app, bool json);

/// The options of `quorvelctl list`.
struct ListOptions {
    std::vector<std::string> searchDirs{};         ///< empty: ~/Applications
    bool stale = false;                            ///< only those that `refresh` would change
    std::optional<std::filesystem::path> runner{}; ///< that `refresh` would use
};

/// Prints the clones in the folders.
void listCommand(const CommandContext& context, const ListOptions& options, bool json);
/// Prints one clone's facts.
void showCommand(const CommandContext& context, const std::string& clone, bool json);
/// Opens a clone.
void openCommand(const CommandContext& context, const std::string& clone, bool json);

/// Opens a clone, and says so on the error stream if it stays in the background.
void openClone(const CommandContext& context, const InstanceRecord& clone);

} // namespace quorvel

#pragma once

#include "CommandLine/CommandContext.h"
#include "CommandLine/EditOptions.h"

#include <string>
#include <vector>

/// The commands of `quorvelctl` that change existing clones. Each prints the paths of the clones
/// that it changed and, on the error stream, what else the user should know. Each throws
/// `CommandError`, `UsageError` or an error of the layers below if it fails.
namespace quorvel {

/// Edits a clone.
void editCommand(const CommandContext& context, const std::string& clone,
                 const EditOptions& options, bool json);

/// The options of `quorvelctl rename`.
struct RenameOptions {
    std::string name{};
    bool moveData = false;
};

/// Gives a clone another name.
void renameCommand(const CommandContext& context, const std::string& clone,
                   const RenameOptions& options, bool json);

/// The options of `quorvelctl refresh`.
struct RefreshOptions {
    std::vector<std::string> clones{};
    bool all = false;
    std::optional<std::filesystem::path> runner{};
};

/// Brings clones up to date; goes on with the others if one fails.
void refreshCommand(const CommandContext& context, const RefreshOptions& options, bool json);

/// Prints the clones that `refresh` would change, and what is out of date in each.
void listStaleCommand(const CommandContext& context, const InstanceRegistry& registry,
                      const std::optional<std::filesystem::path>& runner, bool json);

} // namespace quorvel

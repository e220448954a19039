#pragma once

#include "CommandLine/CommandContext.h"
#include "CommandLine/CreateOptions.h"

#include <string>
#include <vector>

/// The commands behind `quorvelctl`. Each prints its result and throws what goes wrong:
/// `CommandError`, `UsageError` or the error of the room below.
namespace quorvel {

void inspectCommand(const CommandContext& context, const std::string& app, bool json);
void listCommand(const CommandContext& context, const std::vector<std::string>& searchDirs,
                 bool json);
void showCommand(const CommandContext& context, const std::string& clone, bool json);
void createCommand(const CommandContext& context, const CreateOptions& options, bool json);
void openCommand(const CommandContext& context, const std::string& clone, bool json);

} // namespace quorvel

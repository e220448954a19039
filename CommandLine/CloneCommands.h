#pragma once

#include "CommandLine/CreateOptions.h"
#include "CommandLine/Surroundings.h"

#include <string>
#include <vector>

/// The commands behind `quorvelctl`. Each prints its result and throws what goes wrong:
/// `CommandError`, `UsageError` or the error of the room below.
namespace quorvel {

void inspectCommand(const Surroundings& with, const std::string& app, bool json);
void listCommand(const Surroundings& with, const std::vector<std::string>& searchDirs, bool json);
void showCommand(const Surroundings& with, const std::string& clone, bool json);
void createCommand(const Surroundings& with, const CreateOptions& options, bool json);
void openCommand(const Surroundings& with, const std::string& clone, bool json);

} // namespace quorvel

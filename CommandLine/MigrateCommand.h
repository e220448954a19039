#pragma once

#include "CommandLine/CommandContext.h"

#include <string>

namespace quorvel {

/// Moves what a clone keeps in its own Downloads, Documents and Desktop into the user's, and lets
/// it share those if nothing had to stay. Prints what was moved, then throws `CommandError` if
/// something stayed, or the registry's error.
void migrateCommand(const CommandContext& context, const std::string& clone, bool json);

} // namespace quorvel

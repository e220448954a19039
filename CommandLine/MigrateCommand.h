#pragma once

#include "CommandLine/CommandContext.h"

#include <string>

namespace quorvel {

/// Moves the contents of a clone's own Downloads, Documents and Desktop into the user's, and makes
/// the clone share those if everything could be moved. Prints what was moved, then throws
/// `CommandError` if something could not be or if the clone can't be changed. Throws the errors of
/// `moveToSharedFolders` at once.
void migrateCommand(const CommandContext& context, const std::string& clone, bool json);

} // namespace quorvel

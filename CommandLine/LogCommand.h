#pragma once

#include "CommandLine/CommandContext.h"

#include <string>

namespace quorvel {

/// Prints a clone's log: unchanged if the output is not a terminal. With `follow`, goes on with
/// what is added until a signal ends this program. Throws `CommandError` if there is no log, unless
/// it follows.
void logCommand(const CommandContext& context, const std::string& clone, bool follow, bool json);

} // namespace quorvel

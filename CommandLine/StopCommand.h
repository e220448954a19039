#pragma once

#include "CommandLine/CommandContext.h"

#include <string>

namespace quorvel {

/// What the options of `quorvelctl stop` set.
struct StopCommandOptions {
    bool force = false;
    double wait = 10; ///< seconds
};

/// Ends everything that a clone runs; by force only with the option or after a question. Throws
/// `CommandError` if something goes on running. An interrupt ends the waiting, and this program.
void stopCommand(const CommandContext& context, const std::string& clone,
                 const StopCommandOptions& options, bool json);

} // namespace quorvel

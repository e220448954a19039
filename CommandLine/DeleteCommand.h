#pragma once

#include "CommandLine/CommandContext.h"

#include <string>

namespace quorvel {

struct DeleteOptions {
    bool includingData = false;
    bool yes = false; ///< don't ask
};

/// Deletes a clone, after asking. Throws `CommandError` if the answer was no or not everything
/// could be deleted, `UsageError` if nobody can be asked, or the registry's error.
void deleteCommand(const CommandContext& context, const std::string& clone,
                   const DeleteOptions& options, bool json);

} // namespace quorvel

#pragma once

#include "CommandLine/CommandContext.h"

#include <string>

namespace quorvel {

/// The options of `quorvelctl delete`.
struct DeleteOptions {
    bool includingData = false;
    bool yes = false; ///< don't ask
};

/// Deletes a clone after asking for confirmation. Throws `CommandError` if the answer was no or not
/// everything could be deleted, `UsageError` if confirmation is needed but the input is not a
/// terminal, or the registry's error.
void deleteCommand(const CommandContext& context, const std::string& clone,
                   const DeleteOptions& options, bool json);

} // namespace quorvel

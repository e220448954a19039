#pragma once

#include "CommandLine/CommandContext.h"
#include "CommandLine/CreateOptions.h"

namespace quorvel {

/// Makes a clone, prints its path and opens it if the options say so. Throws `CommandError`,
/// `UsageError` or an error of the layers below.
void createCommand(const CommandContext& context, const CreateOptions& options, bool json);

} // namespace quorvel

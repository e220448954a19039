#pragma once

#include "CommandLine/CommandContext.h"

#include <string>
#include <vector>

namespace quorvel {

/// Runs `quorvelctl` with these arguments (without the program's name). Results go to the output,
/// an error as one line to the errors. Gives the exit status: 0, 1 for an error, 2 for wrong usage.
[[nodiscard]] int runCommandLine(const std::vector<std::string>& arguments,
                                 const CommandContext& context);

} // namespace quorvel

#pragma once

#include "CommandLine/CommandContext.h"

#include <string>
#include <vector>

namespace quorvel {

/// Runs `quorvelctl` with these arguments (without the program's name). Results go to the output
/// stream, an error as one line to the error stream. Returns the exit status: 0 on success, 1 for
/// an error, 2 for an invalid command line.
[[nodiscard]] int runCommandLine(const std::vector<std::string>& arguments,
                                 const CommandContext& context);

} // namespace quorvel

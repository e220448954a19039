#pragma once

#include "CommandLine/CommandContext.h"

#include <string>

namespace quorvel {

/// Asks on the error stream, made safe for a terminal, and reads a line. Returns true for "y", "Y"
/// and "yes" only.
[[nodiscard]] bool confirmed(const CommandContext& context, const std::string& question);

} // namespace quorvel

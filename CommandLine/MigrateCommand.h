#pragma once

#include "CommandLine/Surroundings.h"

#include <string>

namespace quorvel {

/// Moves what a clone keeps in its own shared folders into the user's, and has it share those when
/// nothing had to stay. Prints what was moved; then throws `CommandError` with what stayed, or the
/// error of the registry.
void migrateCommand(const Surroundings& with, const std::string& clone, bool json);

} // namespace quorvel

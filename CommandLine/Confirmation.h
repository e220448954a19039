#pragma once

#include "CommandLine/Surroundings.h"

#include <string>

namespace quorvel {

/// Asks on the errors, with what would steer the terminal made visible, and reads a line. Only "y",
/// "Y" and "yes" are a yes.
[[nodiscard]] bool confirmed(const Surroundings& with, const std::string& question);

} // namespace quorvel

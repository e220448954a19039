#pragma once

#include "Platform/processes/Process.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quorvel::testing {

/// Runs a program to its end and gives the most memory that it had at any time, in bytes, but no
/// less than what this process has now. Its output goes nowhere. Throws `std::runtime_error` when
/// it can't be run or a signal ends it.
[[nodiscard]] std::size_t peakMemoryOf(std::vector<std::string> command, Environment environment);

} // namespace quorvel::testing

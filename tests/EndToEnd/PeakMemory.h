#pragma once

#include "Platform/processes/Process.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quorvel::testing {

/// Runs a program to its end, discarding its output, and returns its peak resident memory in bytes,
/// but at least the memory that this process uses now. Throws `std::runtime_error` if it can't be
/// run or is ended by a signal.
[[nodiscard]] std::size_t peakMemoryOf(std::vector<std::string> command,
                                       const Environment& environment);

} // namespace quorvel::testing

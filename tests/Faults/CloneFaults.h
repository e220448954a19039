#pragma once

#include "tests/Faults/FaultHome.h"
#include "tests/Faults/FaultTable.h"

#include <vector>

namespace quorvel::testing {

/// Returns the commands that change clones.
[[nodiscard]] std::vector<FaultCase> cloneFaults(FaultHome& home);

} // namespace quorvel::testing

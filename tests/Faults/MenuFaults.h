#pragma once

#include "tests/Faults/FaultHome.h"
#include "tests/Faults/FaultTable.h"

#include <vector>

namespace quorvel::testing {

/// Returns the publishing of a clone's entry over an older one, and its withdrawal.
[[nodiscard]] std::vector<FaultCase> menuFaults(FaultHome& home);

} // namespace quorvel::testing

#pragma once

#include "benchmarks/AppMeasuring.h"

namespace quorvel::benchmarks {

/// Measures how long the main thread is held while "Refresh Wrappers" brings 1,000 clones up to
/// date, and prints the row.
void measureRefreshing(MeasuringApplication& application);

} // namespace quorvel::benchmarks

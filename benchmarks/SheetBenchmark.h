#pragma once

#include "benchmarks/AppMeasuring.h"

namespace quorvel::benchmarks {

/// Measures how long the sheet takes to show the icons of installed apps, and prints the rows.
void measureFilledGrid(MeasuringApplication& application);

} // namespace quorvel::benchmarks

#pragma once

#include "LaunchKit/Strategy.h"
#include "Presentation/Translation.h"

#include <string>
#include <string_view>

namespace quorvel {

/// Returns the name of a strategy, given as its raw value: "Home override (A)". An unknown raw
/// value is returned unchanged.
[[nodiscard]] std::string strategyLabel(std::string_view rawValue, const Translate& translate);

/// Returns why a trial recommends the strategy, as a clause without a full stop.
[[nodiscard]] std::string strategyReason(Strategy strategy, const Translate& translate);

} // namespace quorvel

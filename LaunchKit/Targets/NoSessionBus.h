#pragma once

#include "Platform/homes/SessionBusAddress.h"

#include <map>
#include <string>

/// Applications that find a running copy by a name on the session's bus don't find it without one.
namespace quorvel {

/// The value of `sessionBusVariable` for an application that is to do without.
inline constexpr const char* noSessionBus = "disabled:";

/// Returns whether these variables of a clone take the session's bus away.
[[nodiscard]] inline bool takeBusAway(const std::map<std::string, std::string>& variables) {
    const auto bus = variables.find(sessionBusVariable);
    return bus != variables.end() && bus->second == noSessionBus;
}

} // namespace quorvel

#pragma once

#include "Platform/processes/StartReport.h"
#include "Platform/shutdown/SignalForwarder.h"

#include <string>
#include <vector>

namespace quorvel {

struct InstanceConfig;

/// What starting a web clone takes.
struct WebCloneStart {
    const InstanceConfig& config;
    std::string configFile;               ///< which contains `config`
    std::string windowWord;               ///< what its windows are to be known by
    std::vector<std::string> addresses{}; ///< to open; only the first counts
};

/// Shows a web clone's window by way of the web host's module, which is loaded into this process,
/// or passes the address on to the process that shows it already. Returns the exit status.
[[nodiscard]] int runWebClone(const WebCloneStart& start, const StartReport& report,
                              const SignalForwarder& signals);

} // namespace quorvel

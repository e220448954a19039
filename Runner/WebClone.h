#pragma once

#include "Platform/processes/StartReport.h"
#include "Platform/shutdown/SignalForwarder.h"

#include <string>
#include <vector>

namespace quorvel {

struct InstanceConfig;

/// A start of a web clone.
struct WebCloneStart {
    const InstanceConfig& config;
    std::string configFile;               ///< which contains `config`
    std::string windowWord;               ///< see `windowWord`
    std::vector<std::string> addresses{}; ///< to open; only the first counts
};

/// Shows a web clone's window by way of the web host's module, which is loaded into this process,
/// or passes the address on to the process that shows it already. Returns the exit status.
[[nodiscard]] int runWebClone(const WebCloneStart& start, const StartReport& report,
                              const SignalForwarder& signals);

} // namespace quorvel

#pragma once

#include "CommandLine/CommandContext.h"
#include "LaunchKit/AppBundle.h"

#include <atomic>
#include <optional>
#include <string>
#include <vector>

/// The commands of `quorvelctl` about installed applications. Each prints its result, and throws if
/// it fails.
namespace quorvel {

/// Prints the applications in the folders, or in the usual ones if there are none.
void appsCommand(const CommandContext& context, const std::vector<std::string>& searchDirs,
                 bool json, const EntitlementReader& entitlements = codeSigningTool());

/// Prints the running applications, or those with this identifier.
void runningCommand(const CommandContext& context, const std::optional<std::string>& bundleId,
                    bool json);

/// The options of `quorvelctl probe`.
struct ProbeOptions {
    std::optional<double> settleA{}; ///< seconds; absent: the prober's own
    std::optional<double> settleB{};
    std::optional<std::string> realLibrary{}; ///< absent: the user's
};

/// Probes an app and prints the results; if the output is a terminal, a progress bar goes to the
/// error stream. SIGINT, SIGTERM and SIGHUP end both launched processes, then this one, as if they
/// had not been caught. Throws `CommandError` if `app` is not a readable bundle.
void probeCommand(const CommandContext& context, const std::string& app,
                  const ProbeOptions& options, bool json,
                  const EntitlementReader& entitlements = codeSigningTool());

} // namespace quorvel

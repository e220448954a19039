#pragma once

#include "CommandLine/Surroundings.h"
#include "LaunchKit/AppBundle.h"

#include <atomic>
#include <optional>
#include <string>
#include <vector>

/// The commands about other people's apps behind `quorvelctl`. Each prints its result and throws
/// what goes wrong.
namespace quorvel {

/// Prints the applications in the folders; without any, in those where applications usually are.
void appsCommand(const Surroundings& with, const std::vector<std::string>& searchDirs, bool json,
                 const EntitlementReader& entitlements = codeSigningTool());

/// Prints the running applications, or those with this identifier.
void runningCommand(const Surroundings& with, const std::optional<std::string>& bundleId,
                    bool json);

struct ProbeOptions {
    std::optional<double> settleA{}; ///< seconds; absent: the prober's own
    std::optional<double> settleB{};
    std::optional<std::string> realLibrary{}; ///< absent: the user's
};

/// Tries an app out and prints what that showed, with a bar for its progress where the errors go
/// when the output is a terminal. SIGINT, SIGTERM and SIGHUP end both launched processes, and then
/// this one as if they had not been caught. Throws `CommandError` when `app` is no readable bundle.
void probeCommand(const Surroundings& with, const std::string& app, const ProbeOptions& options,
                  bool json, const EntitlementReader& entitlements = codeSigningTool());

} // namespace quorvel

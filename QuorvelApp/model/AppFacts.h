#pragma once

#include "LaunchKit/Strategy.h"
#include "QuorvelApp/model/AppServices.h"

#include <functional>
#include <map>
#include <optional>
#include <string>

/// What is to be known about an app before it is cloned. The checks run on worker threads and never
/// fail: an app that can't be read has the defaults.
namespace quorvel {

/// The answers for one app.
struct AppFacts {
    bool sandboxed = false;
    std::optional<std::string> snapReason{};
    std::map<std::string, std::string> environment{};
    bool hasSeed = false;
};

/// What `AppModel::sandboxInfo` proposes for an app.
struct SandboxInfo {
    bool sandboxed = false;
    Strategy strategy = Strategy::homeOverride;
    std::string reason{};                             ///< a sentence for the user
    std::map<std::string, std::string> environment{}; ///< the variables that the app needs
    bool hasSeed = false; ///< the app has data that a clone could start with
};

/// Returns a function that finds out whether the app is sandboxed.
[[nodiscard]] std::function<bool()> sandboxCheck(const AppServices& services,
                                                 const InstalledApp& app);

/// Returns a function that finds out everything.
[[nodiscard]] std::function<AppFacts()> factsCheck(const AppServices& services,
                                                   const InstalledApp& app);

/// Returns what these facts make advisable for a clone of the app.
[[nodiscard]] SandboxInfo proposal(const InstalledApp& app, const AppFacts& facts);

} // namespace quorvel

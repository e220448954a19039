#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quorvel {

/// The runner's own exit statuses, with the values of <sysexits.h>. Others are the target's.
enum RunnerStatus {
    runnerBadAddress = 64,  ///< EX_USAGE: what a web clone is to open is not a web address
    runnerUnavailable = 69, ///< EX_UNAVAILABLE: what the clone needs is not installed
    runnerCannotStart = 71, ///< EX_OSERR: the target could not be started
    runnerHomeInUse = 75,   ///< EX_TEMPFAIL: a target is already running in the instance home
    runnerBadConfig = 78,   ///< EX_CONFIG: the configuration is unreadable
};

/// Runs the clone whose wrapper contains `executable` (WRAPPER/Contents/MacOS/runner) until its
/// target has ended, and all processes that detached themselves from it, where the system lets them
/// be adopted: they count as the clone's. Forwards SIGTERM, SIGINT and SIGHUP to them; these stay
/// blocked in the calling thread. `arguments` are documents or addresses to open, or the one
/// `actionOption` followed by the id of an action of the target's desktop entry. Returns the
/// target's exit status, 128 + N if signal N ended it, or a `RunnerStatus`, whose reason is written
/// to standard error, to the clone's log (unless the clone can't be launched at all) and to the
/// `StartReport`. An app's instance home is locked meanwhile.
[[nodiscard]] int runClone(const std::filesystem::path& executable,
                           const std::vector<std::string>& arguments);

} // namespace quorvel

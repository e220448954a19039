#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quorvel {

/// Exit statuses of the runner's own, beside its target's. The values are sysexits.h's.
enum RunnerStatus {
    runnerUnavailable = 69, ///< what the clone needs is not installed
    runnerCannotStart = 71, ///< the target did not start
    runnerHomeInUse = 75,   ///< a target runs in the instance home already
    runnerBadConfig = 78,   ///< no readable configuration
};

/// Runs the clone whose wrapper holds `executable` (WRAPPER/Contents/MacOS/runner) until its target
/// ends, passing SIGTERM, SIGINT and SIGHUP on to it. `arguments` are documents or addresses to
/// open. Returns the target's exit status, 128 + N for signal N, or a `RunnerStatus` with one line
/// on standard error, in the clone's log (unless the launch was refused) and in the `StartReport`.
/// An app's instance home is locked for as long as the target lives. Blocks those signals in the
/// calling thread.
[[nodiscard]] int runClone(const std::filesystem::path& executable,
                           const std::vector<std::string>& arguments);

} // namespace quorvel

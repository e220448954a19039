#pragma once

#include "Platform/processes/Process.h"
#include "Platform/processes/ProcessFamily.h"

#include <chrono>
#include <string>
#include <vector>

namespace quorvel {

/// A process that was launched with a home of its own, by which the processes that it started can
/// be found after it has ended.
struct IsolatedProcess {
    Process process;
    std::string home;                           ///< its HOME
    std::vector<ProcessIdentity> descendants{}; ///< its descendants when it was asked to end
    bool isTerminating = false;                 ///< it was asked to end

    /// Sends it SIGTERM. Does nothing the second time.
    void terminate();
};

/// Asks the processes to end, unless that was done before, and waits up to `grace` for them. Then
/// asks what they started and left running, in other sessions too. Kills what still runs after the
/// rest of `grace`, but not within a second. Nothing is left running, all children are reaped, and
/// the homes' temporary folders are removed.
void terminateAndWait(std::vector<IsolatedProcess> processes, std::chrono::milliseconds grace);

/// Does the same for one process without making the caller wait.
void terminateInBackground(IsolatedProcess process, std::chrono::milliseconds grace);

} // namespace quorvel

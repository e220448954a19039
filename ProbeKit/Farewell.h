#pragma once

#include "Platform/processes/Process.h"
#include "Platform/processes/ProcessFamily.h"

#include <chrono>
#include <string>
#include <vector>

namespace quorvel {

/// A process that was launched for a trial, with its throw-away home.
struct TrialProcess {
    Process process;
    std::string home;
    std::vector<ProcessIdentity> started{}; ///< what ran below it when it was asked to end

    /// Asks it politely to end.
    void terminate();
};

/// Waits up to `grace` for trials whose processes were asked to end. What they started and left
/// behind, in sessions of its own too, is then asked as well; whatever still runs after the rest of
/// `grace`, at least a second, is ended by force. Nothing is left, not even a zombie of ours.
void waitForEnd(std::vector<TrialProcess> trials, std::chrono::milliseconds grace);

/// The same for one trial, without making the caller wait.
void endInBackground(TrialProcess trial, std::chrono::milliseconds grace);

} // namespace quorvel

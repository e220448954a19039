#pragma once

#include "Platform/processes/ProcessFamily.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <set>
#include <vector>

namespace quorvel {

/// Ends processes that are not this one's children, with everything that they started.
class TreeShutdown {
public:
    /// `runners` are clones' runners, which pass a request to end on to what they started and go on
    /// until that has ended. `others` are processes of clones whose runners are gone. What the user
    /// runs below either, such as the browser in which a link was opened, is left alone.
    TreeShutdown(std::vector<ProcessIdentity> runners, std::vector<ProcessIdentity> others);

    /// Returns those of all that are still running; what they started since is added.
    [[nodiscard]] std::vector<ProcessIdentity> running();

    /// Sends SIGTERM to the main processes, and to what they leave behind. Returns as soon as
    /// nothing is running, after `patience`, or once `cancelled` is true.
    void askToEnd(std::chrono::milliseconds patience, const std::atomic<bool>* cancelled = nullptr);

    /// Kills everything that is still running. Returns when that is done, or after a second.
    void kill();

    /// Returns how many processes have been seen.
    [[nodiscard]] std::size_t seen() const { return known_.size(); }

private:
    void refresh();
    void refreshBelow(const ProcessIdentity& runner);
    [[nodiscard]] bool anyMainRuns() const;

    std::vector<ProcessIdentity> runners_;
    std::vector<ProcessIdentity> others_;
    std::set<ProcessIdentity> known_{};
    std::set<ProcessIdentity> withRunnersHome_{}; ///< when they were first seen
};

} // namespace quorvel

#pragma once

#include "LaunchKit/Records/EnumNames.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>

namespace quorvel {

class InstanceRegistry;
struct InstanceRecord;

/// How a clone is stopped.
struct StopOptions {
    /// How long to wait after asking the processes to end.
    std::chrono::milliseconds patience{std::chrono::seconds(10)};
    /// Called if that many processes are still running then; if it returns true, they are killed.
    /// Empty: they are left alone.
    std::function<bool(std::size_t left)> mayForce{};
    /// Ends the waiting once it is true; what was asked to end is then left alone. Null: can't be
    /// cancelled.
    const std::atomic<bool>* cancelled = nullptr;
};

/// The result of stopping a clone.
struct StoppedClone {
    enum class Case {
        notRunning, ///< nothing of it was running
        elsewhere,  ///< the same, but something that may not be the clone's uses its data folder
        ended,      ///< everything has ended by itself
        forced,     ///< everything has ended, some of it by force
        running     ///< something is still running
    };

    Case outcome = Case::notRunning;
    std::size_t ended = 0; ///< processes
    std::size_t left = 0;  ///< processes
};

template<>
inline constexpr auto enumNames<StoppedClone::Case> = namesOfAllCases<StoppedClone::Case>({
    {StoppedClone::Case::notRunning, "notRunning"},
    {StoppedClone::Case::elsewhere, "elsewhere"},
    {StoppedClone::Case::ended, "ended"},
    {StoppedClone::Case::forced, "forced"},
    {StoppedClone::Case::running, "running"},
});

/// Returns whether anything of the clone runs, or anything else uses its data folder.
[[nodiscard]] bool isCloneRunning(const InstanceRecord& record);

/// Ends everything that the clone runs: its runner's processes, and what an earlier runner that was
/// killed left behind in a data folder that is the clone's alone. The user's own browser that a
/// link was opened in is left out. Blocks. Any thread.
[[nodiscard]] StoppedClone stopClone(const InstanceRegistry& registry, const InstanceRecord& record,
                                     const StopOptions& options = {});

} // namespace quorvel

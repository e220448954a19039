#pragma once

#include "LaunchKit/Changes/CloneSettings.h"
#include "LaunchKit/InstanceRecord.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// Changing clones that exist. Each change is made as a whole or not at all, even if it is
/// interrupted, and waits for other changes in the same folder. A clone that runs goes on as it
/// was started. Any thread.
namespace quorvel {

/// The outcome of a change.
struct ChangedClone {
    InstanceRecord record{};             ///< the clone as it is now
    bool isChanged = false;              ///< false if it was as wanted already
    bool isRunning = false;              ///< the change takes effect when the clone is next started
    std::vector<std::string> kept{};     ///< what the user had changed by other means: "the icon"
    std::vector<std::string> warnings{}; ///< sentences about what went wrong besides
};

/// Takes the clone's settings and changes them. What it throws is passed on.
using CloneEdit = std::function<void(CloneSettings& settings)>;

/// Edits the clone at `wrapper`. Its data, identifier, name and place stay. Throws `Error`; the
/// clone is as it was then.
[[nodiscard]] ChangedClone editClone(const std::filesystem::path& wrapper, const CloneEdit& edit);

} // namespace quorvel

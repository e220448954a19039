#pragma once

#include "Platform/entries/DesktopEntry.h"

#include <string>
#include <vector>

namespace quorvel {

struct InstanceConfig;

/// The parts of a clone's menu entry that come from what the clone opens.
struct MenuTarget {
    std::string name{};  ///< the application's, if it is one
    std::string codes{}; ///< what its command takes: "%U", "%F", or nothing
    bool notifiesOfStart = false;
    std::string flatpakId{}; ///< if it is a Flatpak
    std::vector<std::string> categories{};
    std::vector<std::string> mimeTypes{}; ///< those that the clone is to open
    std::vector<std::string> keywords{};
    std::vector<DesktopAction> actions{}; ///< those that the clone can start
};

/// Reads the target's own desktop entry if it has one.
[[nodiscard]] MenuTarget menuTargetOf(const InstanceConfig& config);

} // namespace quorvel

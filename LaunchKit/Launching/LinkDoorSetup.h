#pragma once

#include "Platform/processes/Environment.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

struct AppBundle;
struct CloneOptions;

/// Where the links go that are clicked in a clone.
enum class LinkRoute {
    inside,  ///< where the clone's own settings lead
    outside, ///< to the user's default browser, or the clone chosen for links
};

/// Returns whether the application is a web browser, which opens the links in it itself.
[[nodiscard]] bool isWebBrowser(const AppBundle& app);

/// Returns where a clone's links have to be sent. `systemOpensOutside` is whether the system opens
/// them outside of clones anyway; nothing has to be done then, so the result is `inside`.
[[nodiscard]] LinkRoute linkRouteOf(const AppBundle& app, const CloneOptions& options,
                                    bool systemOpensOutside);

/// Returns the program that opens links outside of clones: the one that the environment variable
/// QUORVEL_LINK_DOOR names, or else the one that is installed; `std::nullopt` if there is none.
[[nodiscard]] std::optional<std::filesystem::path> linkDoorProgram(const Environment& session);

/// Prepares `home` for the links of the application that is about to be started in it, and changes
/// `clone`, its otherwise complete environment, so that programs that it asks to open a link find
/// the way. `session` is the environment outside. Takes back what an earlier start wrote if the
/// links stay inside. Nothing is written through a link or outside of `home`, and what can't be
/// written is left out. A variable that the clone configures stays as it is. If the clone is
/// started inside another one and keeps its links inside, the other one's door is removed. Never
/// throws.
void setUpLinks(const AppBundle& app, const std::string& home, const CloneOptions& options,
                const Environment& session, Environment& clone);

} // namespace quorvel

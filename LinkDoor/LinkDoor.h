#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// The exit statuses of the program that opens a clone's links, with the values of <sysexits.h>.
enum LinkDoorStatus {
    linkUsage = 64,       ///< EX_USAGE: not exactly one argument
    linkRefused = 65,     ///< EX_DATAERR: not an address that may be handed on
    linkUnavailable = 69, ///< EX_UNAVAILABLE: nothing to open it with is installed
    linkLoops = 70,       ///< EX_SOFTWARE: it was handed on too often
};

/// How often an address may be handed from clone to clone.
inline constexpr int maxLinkHops = 3;

/// Opens the only argument, an address that `checkedLinkScheme` accepts, outside of the clone that
/// this process belongs to: in the session that its session file describes, with the user's default
/// browser or the clone that is chosen for links. What it starts is detached from this process, and
/// nothing waits for it. Returns 0 or a `LinkDoorStatus`, whose reason is written to standard error
/// and to the clone's log. Replaces the environment of this process.
[[nodiscard]] int openLinkOutside(const std::vector<std::string>& arguments);

/// The same for arguments of `xdg-open`, in whose place it is called: anything but a web or mail
/// address is left to the real one, which replaces this process.
[[nodiscard]] int openAsXdgOpen(const std::vector<std::string>& arguments);

} // namespace quorvel

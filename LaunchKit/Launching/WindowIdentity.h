#pragma once

#include "Platform/processes/Process.h"
#include "Platform/programs/ProgramResolution.h"

#include <optional>
#include <string>
#include <vector>

namespace quorvel {

struct DesktopTarget;
struct InstanceConfig;

/// What makes a program's windows known to the desktop by a word of their own, so that the dock
/// shows them under the menu entry that has this word. All is absent for a program that offers
/// nothing.
struct WindowIdentity {
    std::optional<std::string> programName{}; ///< in place of its path
    std::vector<std::string> arguments{};     ///< directly after the program

    bool operator==(const WindowIdentity&) const = default;
};

/// Returns what the program understands. A program never gets an option that it could refuse.
[[nodiscard]] WindowIdentity windowIdentity(const ResolvedProgram& program,
                                            const std::string& word);

/// Adds this identity to a start of the target, unless its arguments name one already.
void applyWindowIdentity(const DesktopTarget& target, const std::string& word,
                         Process::Options& start);

/// Where the dock shows a clone's windows under the clone's own name.
enum class WindowGrouping {
    own,      ///< everywhere
    ownOnX11, ///< with the original's windows if the program draws for Wayland itself
    shared,   ///< with the original's windows
};

/// Returns what the program's identity and its environment lead to.
[[nodiscard]] WindowGrouping windowGrouping(const ResolvedProgram& program,
                                            const Environment& environment);

/// Returns the same for a clone; `own` for what is not started by a desktop entry, or can't be
/// read.
[[nodiscard]] WindowGrouping windowGroupingOf(const InstanceConfig& config);

} // namespace quorvel

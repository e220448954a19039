#pragma once

#include "Platform/processes/Process.h"
#include "Platform/programs/ProgramResolution.h"

#include <optional>
#include <string>
#include <vector>

namespace quorvel {

struct DesktopTarget;
struct InstanceConfig;

/// How a program is started so that the desktop knows its windows by a given word, and the dock
/// shows them under the menu entry with that word. Empty for a program that offers no way.
struct WindowIdentity {
    std::optional<std::string> programName{}; ///< in place of its path
    std::vector<std::string> arguments{};     ///< directly after the program

    bool operator==(const WindowIdentity&) const = default;
};

/// Returns what the program understands; never an option that it could refuse.
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

/// Returns how the windows of the program are grouped when it has this environment.
[[nodiscard]] WindowGrouping windowGrouping(const ResolvedProgram& program,
                                            const Environment& environment);

/// Returns the same for a clone; `own` for what is not started by a desktop entry, or can't be
/// read.
[[nodiscard]] WindowGrouping windowGroupingOf(const InstanceConfig& config);

} // namespace quorvel

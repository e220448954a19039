#pragma once

#include "Platform/desktop/WindowOwner_linux.h"

namespace quorvel {

/// Asks KWin over D-Bus, as the desktop's search does, to bring a window of the owner to the front.
/// Returns false if KWin does not run, or knows no such window. Before Plasma 6 it does not say
/// which process a window belongs to: there, only the class counts.
[[nodiscard]] bool activateInPlasma(const WindowOwner& owner);

} // namespace quorvel

#pragma once

#include "Platform/windows/WindowOwner_linux.h"

namespace quorvel {

/// Asks KWin over D-Bus to bring a window of the owner to the front: as the desktop's search does,
/// else by a script, since the search of Plasma 5 distinguishes windows by their class only.
/// Returns false if KWin does not run, or knows no such window.
[[nodiscard]] bool activateInPlasma(const WindowOwner& owner);

} // namespace quorvel

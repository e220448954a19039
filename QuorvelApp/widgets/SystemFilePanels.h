#pragma once

#include "QuorvelApp/model/FilePanels.h"

namespace quorvel {

/// Returns the panels of the desktop, or of Qt where the desktop has none.
[[nodiscard]] FilePanels systemFilePanels();

/// Keeps Qt's own dialogs from recording, in the user's home, where they have been. To be called
/// before any of them is made.
void keepNoDialogState();

} // namespace quorvel

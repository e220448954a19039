#pragma once

#include "QuorvelApp/model/FilePanels.h"

namespace quorvel {

/// Returns the desktop's panels, or Qt's if the desktop has none.
[[nodiscard]] FilePanels systemFilePanels();

/// Keeps Qt's own dialogs from saving their history in the user's home. Must be called before any
/// of them is created.
void keepNoDialogState();

} // namespace quorvel

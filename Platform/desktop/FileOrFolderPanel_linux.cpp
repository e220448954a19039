#include "Platform/desktop/FileOrFolderPanel.h"

namespace quorvel {

// The desktops' panels take either files or folders.
FileOrFolderPanel systemFileOrFolderPanel() {
    return {};
}

} // namespace quorvel

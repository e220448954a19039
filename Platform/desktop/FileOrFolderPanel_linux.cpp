#include "Platform/desktop/FileOrFolderPanel.h"

namespace quorvel {

// The desktops' panels choose either files or folders, not both.
FileOrFolderPanel systemFileOrFolderPanel() {
    return {};
}

} // namespace quorvel

#pragma once

#include "LaunchKit/Copying/CopyFindings.h"
#include "Platform/copying/FolderCopy.h"

#include <string>

namespace quorvel {

/// Returns the window's message about copied data: how it was copied, then what the user should
/// know about it, each on its own line.
[[nodiscard]] std::string copyResult(const FolderCopyReport& report, const CopyFindings& findings);

} // namespace quorvel

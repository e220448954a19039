#pragma once

#include "LaunchKit/Copying/CopyFindings.h"
#include "Platform/copying/FolderCopy.h"

#include <string>

namespace quorvel {

/// Returns what the window says about data that was copied, in sentences on lines of their own.
[[nodiscard]] std::string copyResult(const FolderCopyReport& report, const CopyFindings& findings);

} // namespace quorvel

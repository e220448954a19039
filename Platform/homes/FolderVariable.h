#pragma once

#include "Platform/processes/Environment.h"

#include <string>

namespace quorvel {

/// Returns a variable that names a folder, without slashes at its end; `otherwise` if it is not an
/// absolute path: desktops ignore such values.
[[nodiscard]] std::string folderVariable(const Environment& session, const char* name,
                                         const std::string& otherwise);

} // namespace quorvel

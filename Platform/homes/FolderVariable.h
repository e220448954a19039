#pragma once

#include "Platform/processes/Process.h"

#include <string>

namespace quorvel {

/// Returns the value of a variable; empty if it is not set.
[[nodiscard]] std::string valueOf(const Environment& environment, const std::string& name);

/// Returns a variable that names a folder, without slashes at its end; `otherwise` if it is not an
/// absolute path: desktops ignore such values.
[[nodiscard]] std::string folderVariable(const Environment& session, const char* name,
                                         const std::string& otherwise);

} // namespace quorvel

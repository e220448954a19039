#pragma once

#include "Platform/processes/Environment.h"

#include <map>
#include <string>

namespace quorvel {

/// Returns the environment of a web clone's host, which its web processes inherit: `session`'s with
/// all data folders below `home`, and of the rest only what a window needs; then `own`, the
/// clone's. Makes the folders that the variables name.
[[nodiscard]] Environment webEnvironment(const std::string& home, const Environment& session,
                                         const std::map<std::string, std::string>& own);

} // namespace quorvel

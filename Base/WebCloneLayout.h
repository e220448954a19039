#pragma once

#include <string_view>

/// Quorvel's own file in a web clone's data folder, as a relative path.
namespace quorvel {

/// Names the store in which the system keeps the clone's web data, on systems that do so. A clone
/// with a copy of this file would share the original's logins.
inline constexpr std::string_view webStoreName = ".local/share/quorvel/web/store.json";

} // namespace quorvel

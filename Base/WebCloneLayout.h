#pragma once

#include <string_view>

/// Where a web clone keeps what is Quorvel's in its data folder, as a relative path.
namespace quorvel {

/// The name of the store in which the system keeps the clone's web data, where it does so. A copy
/// of the file would have the original's logins.
inline constexpr std::string_view webStoreName = ".local/share/quorvel/web/store.json";

} // namespace quorvel

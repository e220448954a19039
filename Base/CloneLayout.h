#pragma once

#include <string_view>

/// Where a clone keeps what is Quorvel's in its data folder, as relative paths.
namespace quorvel {

/// The clone's log.
inline constexpr std::string_view instanceLogName = "quorvel-instance.log";

/// The logs that were set aside are named after it, with "." and a number from 1 to this one.
inline constexpr int logsSetAside = 3;

/// Marks data that was copied for a clone that is not there yet.
inline constexpr std::string_view copiedMarkName = ".quorvel-copied";

/// The folder of what the links that are clicked in the clone need.
inline constexpr std::string_view linkFolderName = ".local/share/quorvel/links";

} // namespace quorvel

#pragma once

#include <string_view>

/// Quorvel's own files in a clone's data folder, as relative paths.
namespace quorvel {

/// The clone's log.
inline constexpr std::string_view instanceLogName = "quorvel-instance.log";

/// The logs that were set aside are named after it, with "." and a number from 1 to this one.
inline constexpr int logsSetAside = 3;

/// Marks data that was copied for a clone that does not exist yet.
inline constexpr std::string_view copiedMarkName = ".quorvel-copied";

/// The folder for what is needed to open links that are clicked in the clone.
inline constexpr std::string_view linkFolderName = ".local/share/quorvel/links";

} // namespace quorvel

#pragma once

#include <string_view>

/// What all layers know of a clone: its executable, and Quorvel's own files in its data folder, as
/// relative paths.
namespace quorvel {

/// The name of a wrapper's executable, the runner.
inline constexpr std::string_view wrapperExecutableName = "runner";

/// The clone's log.
inline constexpr std::string_view instanceLogName = "quorvel-instance.log";

/// The logs that were set aside are named after it, with "." and a number from 1 to this one.
inline constexpr int logsSetAside = 3;

/// Marks data that was copied for a clone that does not exist yet.
inline constexpr std::string_view copiedMarkName = ".quorvel-copied";

/// The folder for what is needed to open links that are clicked in the clone.
inline constexpr std::string_view linkFolderName = ".local/share/quorvel/links";

} // namespace quorvel

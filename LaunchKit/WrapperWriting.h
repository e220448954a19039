#pragma once

#include "LaunchKit/WrapperIcon.h"
#include "LaunchKit/WrapperNotes.h"

#include <filesystem>
#include <optional>
#include <string>

/// Writing the files of a wrapper. Callers prepare it where no one looks for clones.
namespace quorvel {

/// What is written. In a new wrapper, everything has to be.
struct WrapperContents {
    std::string config{};                           ///< as JSON
    std::string list{};                             ///< the property list as XML
    std::optional<std::filesystem::path> runner{};  ///< absent: the old one stays
    std::optional<std::filesystem::path> webHost{}; ///< absent: the old one, if any, stays
    bool keepsIcon = false;                         ///< the old one stays
    std::optional<WrapperIcon> icon{};
    std::optional<IconLabel> label{};
    bool hasUsersEntries = false; ///< some of the property list are the user's
    /// Absent: none are written. `writtenIcon` and `writtenList` are filled in.
    std::optional<WrapperNotes> notes{};
};

/// Returns the module that shows web clones from beside a runner. It may be missing: when the clone
/// is opened, it says so.
[[nodiscard]] std::optional<std::filesystem::path>
webHostBeside(const std::filesystem::path& runner);

/// Writes a new wrapper, or over the files of an old one. Nothing is flushed. Throws
/// `PlatformError`.
void writeWrapper(const std::filesystem::path& wrapper, const WrapperContents& contents);

} // namespace quorvel

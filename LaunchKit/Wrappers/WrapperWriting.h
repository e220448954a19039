#pragma once

#include "LaunchKit/Wrappers/WrapperIcon.h"
#include "LaunchKit/Wrappers/WrapperNotes.h"

#include <filesystem>
#include <optional>
#include <string>

/// Writing the files of a wrapper. Callers do that where no clones are looked for.
namespace quorvel {

struct InstanceConfig;

/// What is written. In a new wrapper, everything has to be.
struct WrapperContents {
    std::string config{};                              ///< as JSON
    std::string list{};                                ///< the property list as XML
    std::optional<std::filesystem::path> runner{};     ///< absent: the old one stays
    std::optional<std::filesystem::path> webHost{};    ///< absent: the old one, if any, stays
    std::optional<std::filesystem::path> statusItem{}; ///< likewise
    bool keepsIcon = false;                            ///< the old one stays
    std::optional<WrapperIcon> icon{};
    std::optional<IconLabel> label{};
    bool hasUsersEntries = false; ///< some of the property list are the user's
    /// Absent: none are written. `writtenIcon`, `writtenList` and `helpers` are filled in.
    std::optional<WrapperNotes> notes{};
};

/// Adds what else a clone with that configuration runs, from beside a runner: the module that shows
/// web clones, or the program that shows others in the menu bar. They may be missing: without the
/// module, the clone says so when it is opened, and without the program, it has no icon there.
void addParts(WrapperContents& contents, const InstanceConfig& config,
              const std::filesystem::path& runner);

/// Writes a new wrapper, or over the files of an old one. Nothing is flushed. Throws
/// `PlatformError`.
void writeWrapper(const std::filesystem::path& wrapper, const WrapperContents& contents);

} // namespace quorvel

#pragma once

#include "LaunchKit/Changes/CloneChange.h"
#include "LaunchKit/Changes/CloneRefresh.h"
#include "Presentation/Translation.h"

#include <filesystem>
#include <string>
#include <vector>

/// What the front ends say about the change of a clone.
namespace quorvel {

/// Returns what the user should know about a change that was made, each a sentence: that it takes
/// effect later, what was kept as it is, and what went wrong besides. `isRunning` says whether the
/// clone runs.
[[nodiscard]] std::vector<std::string> changeNotes(const ChangedClone& changed, bool isRunning,
                                                   const Translate& translate = inEnglish);

/// Returns the sentence that says that a new clone was made, but can't be read.
[[nodiscard]] std::string unreadableText(const std::filesystem::path& clone,
                                         const Translate& translate = inEnglish);

/// Returns what a clone's refresh would bring, in words: "runner".
[[nodiscard]] std::string reasonText(StaleReason reason, const Translate& translate = inEnglish);

} // namespace quorvel

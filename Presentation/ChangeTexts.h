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
/// effect later, what was kept as it is, and what else went wrong. `isRunning` says whether the
/// clone runs.
[[nodiscard]] std::vector<std::string> changeNotes(const ChangedClone& changed, bool isRunning,
                                                   const Translate& translate);

/// Returns the sentence that says that a new clone was made, but can't be read.
[[nodiscard]] std::string unreadableText(const std::filesystem::path& clone,
                                         const Translate& translate);

/// Returns what is out of date in a clone, as a word: "runner".
[[nodiscard]] std::string reasonText(StaleReason reason, const Translate& translate);

} // namespace quorvel

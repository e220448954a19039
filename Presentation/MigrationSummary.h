#pragma once

#include "LaunchKit/InstanceLauncher.h"
#include "Presentation/Translation.h"

#include <string>
#include <vector>

/// What a migration of a clone's own Downloads, Documents and Desktop came to.
namespace quorvel {

/// Returns "3 from Downloads" for each folder that something was moved from, in the order of
/// `InstanceLauncher::sharedUserFolders`.
[[nodiscard]] std::vector<std::string> movedParts(const InstanceLauncher::Migration& migration,
                                                  const Translate& translate = inEnglish);

/// Returns the message about a migration after which the clone `name` shares the user's folders.
[[nodiscard]] std::string sharingMessage(const std::string& name,
                                         const InstanceLauncher::Migration& migration,
                                         const Translate& translate = inEnglish);

/// Returns the message about a migration after which the clone does not share them: what was
/// moved, followed by `reason`.
[[nodiscard]] std::string failureMessage(const InstanceLauncher::Migration& migration,
                                         const std::string& reason,
                                         const Translate& translate = inEnglish);

/// Returns what had to stay, one item per line, and how many more there are after the first few.
/// Empty if nothing had to stay.
[[nodiscard]] std::string unmovedItems(const InstanceLauncher::Migration& migration,
                                       const Translate& translate = inEnglish);

} // namespace quorvel

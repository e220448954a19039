#pragma once

#include "LaunchKit/InstanceLauncher.h"
#include "Presentation/Translation.h"

#include <string>
#include <vector>

/// The outcome of moving a clone's own Downloads, Documents and Desktop into the user's.
namespace quorvel {

/// Returns "3 from Downloads" for each folder that something was moved from, in the order of
/// `InstanceLauncher::sharedUserFolders`.
[[nodiscard]] std::vector<std::string> movedParts(const InstanceLauncher::Migration& migration,
                                                  const Translate& translate);

/// Returns the message about a migration after which the clone `name` shares the user's folders.
[[nodiscard]] std::string sharingMessage(const std::string& name,
                                         const InstanceLauncher::Migration& migration,
                                         const Translate& translate);

/// Returns the message about a migration after which the clone does not share them: what was
/// moved, followed by `reason`.
[[nodiscard]] std::string failureMessage(const InstanceLauncher::Migration& migration,
                                         const std::string& reason, const Translate& translate);

/// Returns the items that could not be moved, one per line, and after the first few the number of
/// others. Empty if everything was moved.
[[nodiscard]] std::string unmovedItems(const InstanceLauncher::Migration& migration,
                                       const Translate& translate);

} // namespace quorvel

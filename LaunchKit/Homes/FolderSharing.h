#pragma once

#include "LaunchKit/Homes/SharedUserFolders.h"

#include <string>

namespace quorvel {

class InstanceRegistry;
struct InstanceRecord;

/// The outcome of `moveToSharedFolders`.
struct FolderSharing {
    SharedUserFolders::Migration migration{};
    std::string failure{}; ///< a sentence if the configuration couldn't be changed afterwards
};

/// Moves the contents of the clone's own Downloads, Documents and Desktop to the user's folders and
/// replaces its own by links, while its home is locked. If everything could be moved, the clone is
/// made to share the folders, which waits for other changes of clones. Throws `HomeInUse` if a
/// target runs in the home, and `PlatformError` if something other than a lock is in the lock's
/// place; nothing is moved then.
[[nodiscard]] FolderSharing moveToSharedFolders(const InstanceRegistry& registry,
                                                const InstanceRecord& record);

} // namespace quorvel

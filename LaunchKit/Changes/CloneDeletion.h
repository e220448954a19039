#pragma once

#include "LaunchKit/Changes/DeletedData.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/files/ItemIdentity.h"

namespace quorvel {

/// Deletes a clone, and its data if `includingData`: both leave their places, each in one step, and
/// are removed then. Interrupted, it leaves the clone as it was or none, as soon as
/// `finishInterruptedChanges` has been called. Where there is no room for that, such as on a full
/// disk, everything is removed where it is, in an order in which an interruption leaves a clone
/// that is still listed and can be deleted again. Its entry in the menu and, unless it is running,
/// its temporary files follow. Waits for other changes beside the wrapper. Throws
/// `RefusedDeletion`, `InvalidRequest` if another change takes too long, or `PlatformError` if the
/// wrapper can't be removed; all leave the data untouched. If the rest of the wrapper can't be
/// removed after the data, the result reports that. The entry is withdrawn by `later`.
DeletedData deleteClone(const InstanceRegistry& registry, const InstanceRecord& record,
                        bool includingData, const InstanceRegistry::Deferral& later = {});

/// Removes a wrapper whose configuration can't be read, if it is still the one with that identity.
/// It leaves its place in one step, as with `deleteClone`; where there is no room for that, it is
/// removed where it is, and an interruption may leave a part of it that is no clone. Its data and
/// its entry in the menu stay. Waits for other changes beside it. Throws `RefusedDeletion` if
/// something else has taken its place, `InvalidRequest` if another change takes too long, and
/// `PlatformError`, also if nothing exists there.
void removeDamagedWrapper(const std::filesystem::path& path, const ItemIdentity& identity);

} // namespace quorvel

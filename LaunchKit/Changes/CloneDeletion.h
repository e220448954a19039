#pragma once

#include "LaunchKit/Changes/DeletedData.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/files/ItemIdentity.h"

namespace quorvel {

/// Deletes a clone, and its data if `includingData`: both are moved out of their places, each in
/// one step, and then removed. After an interruption, `finishInterruptedChanges` leaves the clone
/// as it was, or nothing of it. Where they can't be moved, such as on a full disk, everything is
/// removed in its place, in an order in which an interruption leaves a clone that is still listed
/// and can be deleted again. Then removes its entry in the menu, by `later`, and its temporary
/// files, unless it is running. Waits for other changes beside the wrapper. Throws
/// `RefusedDeletion`, `InvalidRequest` if another change takes too long, or `PlatformError` if the
/// wrapper can't be removed; all leave the data untouched. If the rest of the wrapper can't be
/// removed after the data, the result reports that.
DeletedData deleteClone(const InstanceRegistry& registry, const InstanceRecord& record,
                        bool includingData, const InstanceRegistry::Deferral& later = {});

/// Removes a wrapper whose configuration can't be read, if it is still the one with that identity.
/// It is moved away in one step, as with `deleteClone`; where that isn't possible, it is removed in
/// its place, and an interruption may leave a part of it that is not a clone. Its data and its
/// entry in the menu stay. Waits for other changes beside it. Throws `RefusedDeletion` if something
/// else has taken its place, `InvalidRequest` if another change takes too long, and
/// `PlatformError`, also if nothing exists there.
void removeDamagedWrapper(const std::filesystem::path& path, const ItemIdentity& identity);

} // namespace quorvel

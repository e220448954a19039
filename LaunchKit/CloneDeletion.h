#pragma once

#include "LaunchKit/DeletedData.h"
#include "LaunchKit/InstanceRegistry.h"

namespace quorvel {

/// Deletes a clone, and its data if `includingData`, in an order in which an interrupted deletion
/// leaves a clone that is still listed and can be deleted again: the wrapper except its
/// configuration first, then the data, then the rest, and at last its entry in the menu and, unless
/// it is running, its temporary files. Throws
/// `RefusedDeletion`, or `PlatformError` if the wrapper can't be removed; both leave the data
/// untouched. If the rest of the wrapper can't be removed after the data, the result reports that.
/// The entry is withdrawn by `later`.
DeletedData deleteClone(const InstanceRegistry& registry, const InstanceRecord& record,
                        bool includingData, const InstanceRegistry::Deferral& later = {});

/// Removes a wrapper without checking its contents. Its configuration is removed last, so that an
/// interrupted removal leaves what is still recognised as a clone. Throws `PlatformError`, also if
/// nothing exists there.
void removeWrapper(const std::filesystem::path& path);

} // namespace quorvel

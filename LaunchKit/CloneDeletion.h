#pragma once

#include "LaunchKit/DeletedData.h"
#include "LaunchKit/InstanceRegistry.h"

namespace quorvel {

/// Deletes a clone, and its data when asked, so that a deletion that is cut off leaves a clone that
/// is still listed and can be deleted again: the wrapper but for its configuration goes first, then
/// the data, then the rest. Throws `RefusedDeletion`, or `PlatformError` when the wrapper can't be
/// removed; both leave the data untouched. When the rest of the wrapper stays though data is gone
/// already, the result tells.
DeletedData deleteClone(const InstanceRegistry& registry, const InstanceRecord& record,
                        bool includingData);

} // namespace quorvel

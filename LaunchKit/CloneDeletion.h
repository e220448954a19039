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

/// Removes a wrapper without asking what it holds. Its configuration goes last, so that what is
/// left when that is cut off is still known as a clone. Throws `PlatformError`, also when nothing
/// is there.
void removeWrapper(const std::filesystem::path& path);

} // namespace quorvel

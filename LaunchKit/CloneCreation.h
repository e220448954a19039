#pragma once

#include "LaunchKit/RequestCheck.h"
#include "LaunchKit/WrapperFactory.h"

#include <filesystem>

namespace quorvel {

/// Validates the request and makes the clone. Creations in one folder wait for each other, and each
/// checks what is at the clone's path when its turn comes: of two that are not allowed to replace a
/// clone, one fails. Returns the wrapper's path. Calls `warn` as `create` does. Throws what
/// `validateRequest` and `WrapperFactory::create` throw, and `InvalidRequest` if another creation
/// takes too long. Any thread.
[[nodiscard]] std::filesystem::path createClone(const WrapperFactory& factory,
                                                const WrapperFactory::Request& request,
                                                const RequestPermissions& permissions,
                                                const WrapperFactory::Warning& warn = {});

} // namespace quorvel

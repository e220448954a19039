#pragma once

#include "LaunchKit/Changes/RequestCheck.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/WrapperFactory.h"

#include <filesystem>
#include <optional>

namespace quorvel {

/// A clone as it was made, even if it has been replaced since.
struct MadeClone {
    std::filesystem::path wrapper{};
    std::optional<InstanceRecord> record{}; ///< std::nullopt if it can't be read back
};

/// Puts right what interrupted creations and changes left where the clone and its data would be, so
/// that it does not get another one's data. Throws `InvalidRequest` for an invalid name, or if
/// another creation takes too long.
void clearPlaceFor(const WrapperFactory::Request& request);

/// Validates the request, clears the place and makes the clone. Creations in one folder wait for
/// each other, and each checks what is at the clone's path when its turn comes: of two that are not
/// allowed to replace a clone, one fails. The result is read back before the next creation begins.
/// Calls `warn` as `create` does, and, once other creations may go on, if another clone has the
/// same identifier; what it throws then is ignored. Calls `beforeWriting` last before anything is
/// changed. Throws what `validateRequest` and `WrapperFactory::create` throw, and `InvalidRequest`
/// if another creation takes too long. Any thread.
[[nodiscard]] MadeClone createClone(const WrapperFactory& factory,
                                    const WrapperFactory::Request& request,
                                    const RequestPermissions& permissions,
                                    const WrapperFactory::Warning& warn = {},
                                    const WrapperFactory::BeforeWriting& beforeWriting = {});

/// The same for a caller that has cleared the place.
[[nodiscard]] MadeClone createCloneInClearPlace(const WrapperFactory& factory,
                                                const WrapperFactory::Request& request,
                                                const RequestPermissions& permissions,
                                                const WrapperFactory::Warning& warn,
                                                const WrapperFactory::BeforeWriting& beforeWriting);

} // namespace quorvel

#pragma once

#include "Base/Error.h"
#include "LaunchKit/Homes/DataFolderGuard.h"
#include "LaunchKit/WrapperFactory.h"

#include <filesystem>
#include <optional>
#include <string>

/// Checks that the factory leaves to its callers: it accepts any name, and replaces anything that
/// is already at the clone's path. Any thread.
namespace quorvel {

/// A request that would overwrite something other than a clone, or whose name can't be used. The
/// text is for the user.
class InvalidRequest : public Error {
public:
    using Error::Error;
};

/// The data folder would not belong to the new clone alone: it is another clone's, or the user's.
class SharedHome : public InvalidRequest {
public:
    using InvalidRequest::InvalidRequest;
};

/// A clone of that name exists already.
class CloneExists : public InvalidRequest {
public:
    using InvalidRequest::InvalidRequest;
};

/// The clone that would be replaced can't be read.
class DamagedClone : public InvalidRequest {
public:
    using InvalidRequest::InvalidRequest;
};

/// The checks that the user has chosen to skip.
struct RequestPermissions {
    bool sharedHome = false;    ///< don't throw `SharedHome`
    bool existingClone = false; ///< don't throw `CloneExists`
    bool damagedClone = false;  ///< don't throw `DamagedClone`
};

/// Returns the name without surrounding white space. Throws `InvalidRequest` for a name that would
/// lead out of the folder of clones, is not valid UTF-8, or contains control characters other than
/// line feeds and tabs.
[[nodiscard]] std::string validatedCloneName(const std::string& name);

/// Resolves the data folder that a clone made from the request would have. Throws `InvalidRequest`
/// for an invalid name.
[[nodiscard]] DataFolder dataFolderOf(const WrapperFactory::Request& request);

/// Throws `InvalidRequest` if something other than a clone is at the path of a new wrapper. Throws
/// `CloneExists` and `DamagedClone` for a clone unless `permissions` allow these cases. What a
/// failed creation left may always be replaced.
void requireReplaceable(const std::filesystem::path& wrapper,
                        const RequestPermissions& permissions);

/// Throws `InvalidRequest` if the name is invalid as above, if the target, the icon or the runner
/// is inside the clone that would be replaced, or if the data folder is inside the wrapper; also
/// what `requireReplaceable` throws, and `SharedHome` unless `permissions` allow it.
void validateRequest(const WrapperFactory::Request& request,
                     const std::optional<std::filesystem::path>& runner = std::nullopt,
                     const RequestPermissions& permissions = {});

} // namespace quorvel

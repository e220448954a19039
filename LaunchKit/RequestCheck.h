#pragma once

#include "Base/Error.h"
#include "LaunchKit/WrapperFactory.h"

#include <filesystem>
#include <optional>
#include <string>

/// What the factory leaves to its callers: it makes a clone of any name, and replaces whatever is
/// in its place. Any thread.
namespace quorvel {

/// A request that would lose something that is no clone; the text is for the user.
class RefusedRequest : public Error {
public:
    using Error::Error;
};

/// The data folder is not the new clone's alone: it is another clone's, or the user's own.
class SharedHome : public RefusedRequest {
public:
    using RefusedRequest::RefusedRequest;
};

/// The clone that would be replaced can't be read.
class DamagedClone : public RefusedRequest {
public:
    using RefusedRequest::RefusedRequest;
};

/// What the user has said to be meant.
struct RequestPermissions {
    bool sharedHome = false;   ///< no `SharedHome`
    bool damagedClone = false; ///< no `DamagedClone`
};

/// The name without the white space around it. Throws `RefusedRequest` for a name that would lead
/// out of the folder of clones, or that is no text.
[[nodiscard]] std::string checkedCloneName(const std::string& name);

/// Throws `RefusedRequest` for a name as above, when something else than a clone is in the new
/// one's place, when the new one is to be made of parts of the clone that it replaces, or when its
/// data folder lies in its wrapper. Without permission, also `SharedHome` and
/// `DamagedClone`.
void checkRequest(const WrapperFactory::Request& request,
                  const std::optional<std::filesystem::path>& runner = std::nullopt,
                  const RequestPermissions& permissions = {});

} // namespace quorvel

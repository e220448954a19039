#pragma once

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/Copying/CopiedData.h"
#include "LaunchKit/WrapperFactory.h"
#include "Platform/processes/Environment.h"

#include <vector>

namespace quorvel {

/// Returns the user's folders that a clone made from the request can start with as its data, and
/// where the clone looks for them: for Firefox and its relatives the default profile, for Chromium
/// and Electron the whole folder of user data, for others the folders in their shipped profile.
/// Nothing is known about an application that is not a desktop entry or an AppImage. Throws
/// `DataCopyError` if it is not known where the original keeps its data or where the clone would
/// look for it, if there is no data, or if the original is running, which the parts check again
/// when they are copied. `session` is the environment of the session.
[[nodiscard]] std::vector<DataPart> seedFor(const WrapperFactory::Request& request,
                                            const Environment& session = currentEnvironment());

/// Returns whether `seedFor` knows the data of that application and finds it, so that a clone with
/// the engine's own arguments can start with it once the original is not running.
[[nodiscard]] bool hasSeed(const AppBundle& app, const Environment& session = currentEnvironment());

} // namespace quorvel

#pragma once

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/AppProfile.h"
#include "ProbeKit/Models.h"

#include <string>

namespace quorvel::ProfileGenerator {

/// Returns the profile derived from a probe's result. `osSignature` is the system on which the
/// probe ran.
[[nodiscard]] AppProfile makeProfile(const AppBundle& bundle, const ProbeResult& result,
                                     const std::string& osSignature);

} // namespace quorvel::ProfileGenerator

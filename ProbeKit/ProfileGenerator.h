#pragma once

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/AppProfile.h"
#include "ProbeKit/Models.h"

#include <string>

namespace quorvel::ProfileGenerator {

/// The profile that a probe's result amounts to on this system.
[[nodiscard]] AppProfile makeProfile(const AppBundle& bundle, const ProbeResult& result,
                                     const std::string& osSignature);

} // namespace quorvel::ProfileGenerator

#pragma once

#include "LaunchKit/Records/EnumNames.h"

namespace quorvel {

/// How a clone's data is kept apart from that of the app's normal use.
enum class Strategy { homeOverride, containerRedirect, wrapperIdentity, unsupported };

template<>
inline constexpr auto enumNames<Strategy> = namesOfAllCases<Strategy>({
    {Strategy::homeOverride, "home-override"},
    {Strategy::containerRedirect, "container-redirect"},
    {Strategy::wrapperIdentity, "wrapper-identity"},
    {Strategy::unsupported, "unsupported"},
});

} // namespace quorvel

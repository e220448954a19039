#include "LaunchKit/Strategy.h"

#include "LaunchKit/RawStrings.h"

namespace quorvel {
namespace {

constexpr RawStrings<Strategy, 4> strategies{{
    {Strategy::homeOverride, "home-override"},
    {Strategy::containerRedirect, "container-redirect"},
    {Strategy::wrapperIdentity, "wrapper-identity"},
    {Strategy::unsupported, "unsupported"},
}};

} // namespace

std::string_view rawString(Strategy strategy) {
    return rawStringIn(strategies, strategy);
}

std::optional<Strategy> strategyFromRawString(std::string_view text) {
    return caseIn(strategies, text);
}

} // namespace quorvel

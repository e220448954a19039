#pragma once

#include <optional>
#include <string_view>

namespace quorvel {

/// How a clone's data is kept apart from that of the app's normal use.
enum class Strategy { homeOverride, containerRedirect, wrapperIdentity, unsupported };

/// "home-override", "container-redirect", "wrapper-identity" or "unsupported".
[[nodiscard]] std::string_view rawString(Strategy strategy);

/// Nothing for any other text.
[[nodiscard]] std::optional<Strategy> strategyFromRawString(std::string_view text);

} // namespace quorvel

#include "LaunchKit/WebBadge.h"

#include "Base/Text.h"

#include <algorithm>
#include <charconv>

namespace quorvel {
namespace {

std::optional<std::int64_t> decimal(const std::string& digits) {
    std::int64_t number = 0;
    const char* end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, number);
    return result.ec == std::errc{} && result.ptr == end ? std::optional(number) : std::nullopt;
}

} // namespace

void WebBadgeState::setAPIBadge(std::int64_t count) {
    apiBadge = std::max<std::int64_t>(count, 0);
}

void WebBadgeState::setTitle(std::string_view title) {
    titleBadge = unreadCount(title);
}

std::optional<std::string> WebBadgeState::label() const {
    const std::int64_t count = apiBadge.value_or(titleBadge);
    return count < 1 ? std::nullopt : std::optional(std::to_string(count));
}

std::int64_t WebBadgeState::unreadCount(std::string_view title) {
    for (const char* pattern : {R"(\(\s*(\d+)\+?\s*\))", R"(\[\s*(\d+)\+?\s*\])"}) {
        if (const auto digits = Text::firstCapture(pattern, title)) {
            if (const auto number = decimal(*digits)) {
                return *number;
            }
        }
    }
    return 0;
}

} // namespace quorvel

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// Which unread count a web clone's badge shows: the one that the page reports, once it has
/// reported any, else the one in its title.
struct WebBadgeState {
    std::optional<std::int64_t> apiBadge{};
    std::int64_t titleBadge = 0;

    bool operator==(const WebBadgeState&) const = default;

    /// A negative count is taken as 0.
    void setAPIBadge(std::int64_t count);
    void setTitle(std::string_view title);

    /// The badge's text; nothing for no badge.
    [[nodiscard]] std::optional<std::string> label() const;

    /// The number in a title such as "(3) Inbox", "Inbox (99+)" or "[12] Chat"; 0 without one.
    /// Round brackets win over square ones.
    [[nodiscard]] static std::int64_t unreadCount(std::string_view title);
};

} // namespace quorvel

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// The unread count that a web clone's badge shows: the one that the page reports, once it has
/// reported any, or else the one in its title.
struct WebBadgeState {
    std::optional<std::int64_t> apiBadge{};
    std::int64_t titleBadge = 0;

    bool operator==(const WebBadgeState&) const = default;

    /// Sets the count that the page reports. A negative count is taken as 0.
    void setAPIBadge(std::int64_t count);
    /// Sets the unread count found in the page's title.
    void setTitle(std::string_view title);

    /// Returns the badge's text; `std::nullopt` if there is no badge.
    [[nodiscard]] std::optional<std::string> label() const;

    /// Returns the number in a title such as "(3) Inbox", "Inbox (99+)" or "[12] Chat"; 0 if there
    /// is none. Round brackets win over square ones.
    [[nodiscard]] static std::int64_t unreadCount(std::string_view title);
};

} // namespace quorvel

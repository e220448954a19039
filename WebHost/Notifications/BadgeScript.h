#pragma once

#include <cstdint>
#include <optional>

/// How pages report a badge. The engine lacks `navigator.setAppBadge`, so it is added to the page,
/// and reaches the host by way of a script that the page can't see.
namespace quorvel {

/// The name of the script world that the page can't see, and of the message handler in it.
inline constexpr const char* badgeWorld = "quorvel";
inline constexpr const char* badgeHandler = "badge";

/// The script that adds the interface to the page.
extern const char* const badgePageScript;
/// The script for `badgeWorld`, which passes counts on.
extern const char* const badgeListenerScript;
/// The script to run in `badgeWorld` of each page in the clone's own window: its badge counts.
extern const char* const badgeMainScript;

/// Returns the count in a message from the page; std::nullopt if it is not a whole number from 0 to
/// 2^53 - 1.
[[nodiscard]] std::optional<std::int64_t> reportedBadge(double message);

} // namespace quorvel

#pragma once

#include "Platform/watching/FSEventStream.h"

#include <deque>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace quorvel {

/// Collects events until they are due, one per path, in the order in which the paths first
/// occurred. Each event has the flags of everything that happened to its path.
class EventCoalescer {
public:
    using Clock = std::chrono::steady_clock;

    explicit EventCoalescer(std::chrono::milliseconds latency) : latency_(latency) {}

    /// Adds an event, with bits of `FSEventFlag`.
    void add(std::string path, std::uint32_t flags);

    /// Returns when the collected events are to be delivered, which may be in the past, or
    /// std::nullopt if there are none.
    [[nodiscard]] std::optional<Clock::time_point> due() const;

    /// Returns the collected events and starts over.
    [[nodiscard]] FSEventBatch take(Clock::time_point now);

private:
    std::chrono::milliseconds latency_;
    Clock::time_point nextDelivery_{};
    std::deque<std::string> paths_{}; ///< a deque, because `places_` refers to its elements
    std::vector<std::uint32_t> flags_{};
    std::unordered_map<std::string_view, std::size_t> places_{};
};

} // namespace quorvel

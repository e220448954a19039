#pragma once

#include "Platform/watching/FSEventStream.h"

#include <deque>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace quorvel {

/// Gathers events until they are due, one for each path: in the order in which paths first came,
/// with the flags of all that happened to them.
class EventCoalescer {
public:
    using Clock = std::chrono::steady_clock;

    explicit EventCoalescer(std::chrono::milliseconds latency) : latency_(latency) {}

    void add(std::string path, std::uint32_t flags);

    /// When the gathered events are to be delivered: the past when that is at once. Nothing when
    /// there are none.
    [[nodiscard]] std::optional<Clock::time_point> due() const;

    /// Gives what was gathered and begins anew.
    [[nodiscard]] FSEventBatch take(Clock::time_point now);

private:
    std::chrono::milliseconds latency_;
    Clock::time_point nextDelivery_{};
    std::deque<std::string> paths_{}; ///< none of them moves, so that `places_` may point to them
    std::vector<std::uint32_t> flags_{};
    std::unordered_map<std::string_view, std::size_t> places_{};
};

} // namespace quorvel

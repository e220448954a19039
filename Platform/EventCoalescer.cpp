#include "Platform/EventCoalescer.h"

#include <utility>

namespace quorvel {

void EventCoalescer::add(std::string path, std::uint32_t flags) {
    const auto [place, isNew] = places_.try_emplace(path, batch_.paths.size());
    if (isNew) {
        batch_.paths.push_back(std::move(path));
        batch_.flags.push_back(flags);
    } else {
        batch_.flags[place->second] |= flags;
    }
}

std::optional<EventCoalescer::Clock::time_point> EventCoalescer::due() const {
    return batch_.paths.empty() ? std::nullopt : std::optional(nextDelivery_);
}

FSEventBatch EventCoalescer::take(Clock::time_point now) {
    nextDelivery_ = now + latency_;
    places_.clear();
    return std::exchange(batch_, {});
}

} // namespace quorvel

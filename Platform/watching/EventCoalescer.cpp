#include "Platform/watching/EventCoalescer.h"

#include <iterator>
#include <utility>

namespace quorvel {

void EventCoalescer::add(std::string path, std::uint32_t flags) {
    if (const auto known = places_.find(path); known != places_.end()) {
        flags_[known->second] |= flags;
        return;
    }
    paths_.push_back(std::move(path));
    places_.emplace(paths_.back(), flags_.size());
    flags_.push_back(flags);
}

std::optional<EventCoalescer::Clock::time_point> EventCoalescer::due() const {
    return flags_.empty() ? std::nullopt : std::optional(nextDelivery_);
}

FSEventBatch EventCoalescer::take(Clock::time_point now) {
    nextDelivery_ = now + latency_;
    places_.clear();
    FSEventBatch batch;
    batch.paths.assign(std::make_move_iterator(paths_.begin()),
                       std::make_move_iterator(paths_.end()));
    batch.flags = std::exchange(flags_, {});
    paths_.clear();
    return batch;
}

} // namespace quorvel

#include "WebHost/Pages/FloodCaps.h"

namespace quorvel {

bool RateCap::admits(FloodClock::time_point now) {
    while (!admitted_.empty() && now - admitted_.front() >= span_) {
        admitted_.pop_front();
    }
    if (admitted_.size() >= most_) {
        return false;
    }
    admitted_.push_back(now);
    return true;
}

bool PopupCap::admits(std::uint64_t gesture, std::size_t open) {
    if (gesture <= last_ || open >= mostPopups) {
        return false;
    }
    last_ = gesture;
    return true;
}

bool PageVisit::begins(const std::string& host, std::uint64_t gesture) {
    const bool isNew = host != host_ || gesture > used_;
    host_ = host;
    return isNew;
}

bool DialogCap::admits() {
    if (isStopped_) {
        return false;
    }
    ++shown_;
    return true;
}

} // namespace quorvel

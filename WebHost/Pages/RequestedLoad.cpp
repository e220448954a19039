#include "WebHost/Pages/RequestedLoad.h"

namespace quorvel {

void RequestedLoad::requested(const std::string& address) {
    if (!isWaiting() || address != address_) {
        repetitions_ = 0;
    }
    state_ = State::requested;
    address_ = address;
}

void RequestedLoad::decided(const std::string& address, bool isGesture) {
    if (isWaiting() && address == address_) {
        state_ = State::decided;
    } else if (isGesture) {
        withdraw(); // the user has gone elsewhere since
    }
}

// Before the decision, it is another page that begins.
void RequestedLoad::started() {
    if (state_ == State::decided) {
        withdraw();
    }
}

void RequestedLoad::failed(const std::string& address) {
    if (address == address_) {
        withdraw();
    }
}

bool RequestedLoad::isToBeRepeated() {
    constexpr int most = 3;
    return isWaiting() && repetitions_++ < most;
}

} // namespace quorvel

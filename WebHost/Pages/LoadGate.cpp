#include "WebHost/Pages/LoadGate.h"

#include <utility>

namespace quorvel {

void LoadGate::load(const std::string& address) {
    if (!isClosed_) {
        actions_.load(address);
        return;
    }
    address_ = address;
    if (!std::exchange(isAsked_, true)) {
        actions_.ask({.text = reason_,
                      .yes = "Load Without It",
                      .no = "Site Settings…",
                      .answered = [this](std::optional<bool> isMeant) { answered(isMeant); },
                      .isUrgent = true});
    }
}

void LoadGate::answered(std::optional<bool> isMeant) {
    isAsked_ = false;
    if (isMeant == true) {
        open();
    } else if (isMeant == false) {
        actions_.showSettings();
    }
}

void LoadGate::open() {
    if (std::exchange(isClosed_, false)) {
        actions_.load(address_);
    }
}

} // namespace quorvel

#include "Platform/processes/InterruptFlag.h"

namespace quorvel {
namespace {

std::atomic<bool> interrupted{false};
std::atomic<int> lastSignal{0};
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free,
              "a signal handler may use only lock-free atomics");

void note(int signal) {
    lastSignal = signal;
    interrupted = true;
}

} // namespace

InterruptFlag::InterruptFlag() {
    interrupted = false;
    lastSignal = 0;
    struct sigaction action {};
    action.sa_handler = note;
    sigemptyset(&action.sa_mask);
    for (std::size_t index = 0; index < signals.size(); ++index) {
        ::sigaction(signals[index], nullptr, &old_[index]);
        // As under nohup.
        if (old_[index].sa_handler != SIG_IGN) {
            ::sigaction(signals[index], &action, nullptr);
        }
    }
}

InterruptFlag::~InterruptFlag() {
    restore();
}

const std::atomic<bool>& InterruptFlag::flag() const {
    return interrupted;
}

void InterruptFlag::deliver() {
    restore();
    if (const int signal = lastSignal.exchange(0); signal != 0) {
        std::raise(signal);
    }
}

void InterruptFlag::restore() {
    if (restored_) {
        return;
    }
    restored_ = true;
    for (std::size_t index = 0; index < signals.size(); ++index) {
        ::sigaction(signals[index], &old_[index], nullptr);
    }
}

} // namespace quorvel

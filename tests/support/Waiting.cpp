#include "tests/support/Waiting.h"

#include <thread>

namespace quorvel::testing {

bool waitUntil(const std::function<bool()>& predicate, std::chrono::milliseconds deadline) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!predicate()) {
        if (std::chrono::steady_clock::now() >= end) {
            return predicate();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

} // namespace quorvel::testing

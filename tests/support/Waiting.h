#pragma once

#include <chrono>
#include <functional>

namespace quorvel::testing {

/// Waits until `predicate` holds. Returns false if it still does not at the deadline.
[[nodiscard]] bool waitUntil(const std::function<bool()>& predicate,
                             std::chrono::milliseconds deadline = std::chrono::seconds(20));

} // namespace quorvel::testing

#pragma once

#include <utility>

namespace quorvel {

/// Lets a page ask the user whether to close it, but not one that hangs.
class CloseGuard {
public:
    /// Called when the user closes the page. Returns whether it is closed without being asked,
    /// since it did not react the last time.
    [[nodiscard]] bool closesAtOnce() { return std::exchange(isAsked_, true); }
    /// The page reacts: it asks the user, or another one is there.
    void reacted() { isAsked_ = false; }

private:
    bool isAsked_ = false;
};

} // namespace quorvel

#pragma once

#include <utility>

namespace quorvel {

/// Lets a page ask the user whether to close it, but not one that hangs. The engine gives pages an
/// instant to react and then closes them, even if the user is about to be asked or wants to stay.
class CloseGuard {
public:
    enum class Ending {
        close,
        askAgain, ///< when the page has reacted, `closesAfterAll` decides
        stay,
    };

    /// Called when the user closes the page. Returns whether it is closed without being asked,
    /// since it did not react the last time.
    [[nodiscard]] bool closesAtOnce() {
        isClosing_ = true;
        return std::exchange(isAsked_, true);
    }
    /// The page asks the user.
    void asksUser() { isAsked_ = false; }
    /// The user has answered. Returns whether the page is to be closed.
    [[nodiscard]] bool answered(bool leaves) {
        asksUser();
        isStaying_ = !leaves;
        return std::exchange(isClosing_, false) && leaves;
    }
    /// The page has reacted to the answer.
    void settled() { isStaying_ = false; }
    /// Another page is there.
    void replaced() { *this = CloseGuard(); }

    /// Returns what to do when the engine closes the page.
    [[nodiscard]] Ending endingByEngine() const {
        if (isStaying_) {
            return Ending::stay;
        }
        return isAsked_ ? Ending::askAgain : Ending::close;
    }
    /// Returns whether the page is closed once it has reacted: not if it asks the user.
    [[nodiscard]] bool closesAfterAll() const { return isAsked_; }

private:
    bool isAsked_ = false;   ///< to close, and has not reacted
    bool isClosing_ = false; ///< the user wants to close it
    bool isStaying_ = false; ///< the page may not know the answer yet
};

} // namespace quorvel

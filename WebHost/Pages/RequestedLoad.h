#pragma once

#include <string>

namespace quorvel {

/// The page that the engine was asked to load. The engine silently drops the request if another
/// page, which comes from another process, arrives meanwhile.
class RequestedLoad {
public:
    /// How long the engine may take to begin after another page has arrived.
    static constexpr unsigned longestDelay = 500; // milliseconds

    /// The engine was asked to load this address.
    void requested(const std::string& address);
    /// The engine wants to know whether it may go to this address; `isGesture` if the user does.
    void decided(const std::string& address, bool isGesture);
    /// The engine has begun to load a page.
    void started();
    /// The engine could not load this address.
    void failed(const std::string& address);
    /// Nothing is to be loaded any more.
    void withdraw() { state_ = State::none; }

    /// Returns whether the engine has yet to begin with it.
    [[nodiscard]] bool isWaiting() const { return state_ != State::none; }
    [[nodiscard]] const std::string& address() const { return address_; }
    /// Returns whether the engine is to be asked once more, and counts that: three times at most.
    [[nodiscard]] bool isToBeRepeated();

private:
    enum class State {
        none,
        requested,
        decided,
    };

    State state_ = State::none;
    std::string address_{};
    int repetitions_ = 0;
};

} // namespace quorvel

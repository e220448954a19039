#pragma once

#include <array>
#include <atomic>
#include <csignal>

namespace quorvel {

/// While it lives, a request to end this process (SIGINT, SIGTERM, SIGHUP) only sets a flag, so
/// that what was started can be ended first. One at a time.
class Interruption {
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    [[nodiscard]] const std::atomic<bool>& flag() const;

    /// Puts the old handling back and, when a signal came, lets it do what it would have done.
    void deliver();

private:
    static constexpr std::array<int, 3> signals{SIGINT, SIGTERM, SIGHUP};

    void restore();

    std::array<struct sigaction, signals.size()> old_{};
    bool restored_ = false;
};

} // namespace quorvel

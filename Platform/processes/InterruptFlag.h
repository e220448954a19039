#pragma once

#include <array>
#include <atomic>
#include <csignal>

namespace quorvel {

/// While one exists, SIGINT, SIGTERM and SIGHUP only set a flag, so that started processes can be
/// ended before this one. A signal that was ignored before (as under nohup) stays ignored. At most
/// one may exist at a time.
class InterruptFlag {
public:
    InterruptFlag();
    InterruptFlag(const InterruptFlag&) = delete;
    InterruptFlag& operator=(const InterruptFlag&) = delete;
    ~InterruptFlag();

    /// Returns the flag, which is true once a signal has arrived.
    [[nodiscard]] const std::atomic<bool>& flag() const;

    /// Restores the previous handling and raises the signal that arrived, if any.
    void deliver();

private:
    static constexpr std::array<int, 3> signals{SIGINT, SIGTERM, SIGHUP};

    void restore();

    std::array<struct sigaction, signals.size()> old_{};
    bool restored_ = false;
};

} // namespace quorvel

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

/// Limits to what a page may do.
namespace quorvel {

using FloodClock = std::chrono::steady_clock;

/// Admits at most that many in any span of that length.
class RateCap {
public:
    RateCap(std::size_t most, FloodClock::duration span) : most_(most), span_(span) {}

    /// Returns whether one more is admitted at that time, which must not be before the last one;
    /// one that is not doesn't count.
    [[nodiscard]] bool admits(FloodClock::time_point now);

private:
    std::size_t most_;
    FloodClock::duration span_;
    std::deque<FloodClock::time_point> admitted_{};
};

/// The host's limits.
inline constexpr std::size_t mostPopups = 5;
inline constexpr std::size_t mostDownloadsAtOnce = 4;
inline constexpr std::size_t mostWaitingQuestions = 5;
inline constexpr std::size_t longestDialogText = 2000;

/// How many notifications a page may show.
[[nodiscard]] inline RateCap notificationCap() {
    return {5, std::chrono::minutes(1)};
}
/// A download within this time of another is not started without asking.
[[nodiscard]] inline RateCap unaskedDownloadCap() {
    return {1, std::chrono::seconds(10)};
}
/// How often a dock is told that a new count is urgent.
[[nodiscard]] inline RateCap urgencyCap() {
    return {1, std::chrono::seconds(10)};
}
/// How often a page that crashed is shown again by itself.
[[nodiscard]] inline RateCap reloadCap() {
    return {3, std::chrono::seconds(60)};
}

/// One pop-up window per gesture of the user.
class PopupCap {
public:
    /// Returns whether a window may be opened while `open` others are, for the gesture of that
    /// number (the user's clicks and key presses, counted from 1).
    [[nodiscard]] bool admits(std::uint64_t gesture, std::size_t open);

private:
    std::uint64_t last_ = 0;
};

/// Decides when a page may ask and show things again: not by loading itself again.
class PageVisit {
public:
    /// The page has shown something that is limited, after that many gestures of the user.
    void used(std::uint64_t gesture) { used_ = gesture; }
    /// A page of that host is there. Returns whether its limits are reset: it is another host's,
    /// or the user has done something since.
    [[nodiscard]] bool begins(const std::string& host, std::uint64_t gesture);

private:
    std::string host_{};
    std::uint64_t used_ = 0;
};

/// The dialogs of one visit.
class DialogCap {
public:
    /// Returns whether a dialog may be shown, and counts it.
    [[nodiscard]] bool admits();
    /// Returns whether the dialog just admitted should offer to stop further ones.
    [[nodiscard]] bool offersToStop() const { return shown_ > 2; }
    /// Admits none from now on, until `reset`.
    void stop() { isStopped_ = true; }
    /// See `PageVisit`.
    void reset() { *this = DialogCap(); }

private:
    std::size_t shown_ = 0;
    bool isStopped_ = false;
};

} // namespace quorvel

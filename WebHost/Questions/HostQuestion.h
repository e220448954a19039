#pragma once

#include <functional>
#include <optional>
#include <string>

namespace quorvel {

/// Something that the user is asked in a bar above the page.
struct HostQuestion {
    std::string text{};
    std::string yes{};
    std::string no{};
    /// Called once: with the answer, or with std::nullopt if the bar was closed.
    std::function<void(std::optional<bool>)> answered{};
    bool isUrgent = false; ///< comes before all others, however many wait
};

} // namespace quorvel

#pragma once

#include "Platform/files/FileHandle.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

/// How a second opening of a web clone reaches the first, which holds the lock on the data folder:
/// by way of a socket in that folder.
namespace quorvel {

/// What the second one passes on.
struct WebHandover {
    std::string address{}; ///< empty: only show the window
    std::string token{};   ///< with which the desktop lets the window come to the front, or empty

    bool operator==(const WebHandover&) const = default;

    /// Returns the form in which it is sent.
    [[nodiscard]] std::string text() const;
    /// Returns what was sent; std::nullopt if it is not in that form, or the address is not a web
    /// address.
    [[nodiscard]] static std::optional<WebHandover> parse(std::string_view text);
};

/// The longest text of a handover, in bytes.
inline constexpr std::size_t longestHandover = std::size_t{64} << 10U;

/// Returns a socket that waits for handovers in the data folder, for which the caller holds the
/// lock; an empty handle if it can't be made.
[[nodiscard]] FileHandle listenForHandovers(const std::string& home);

/// Passes it to the clone that runs in the data folder. Returns whether that clone has accepted it
/// within `patience`.
[[nodiscard]] bool sendHandover(const std::string& home, const WebHandover& handover,
                                std::chrono::milliseconds patience);

} // namespace quorvel

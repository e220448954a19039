#pragma once

#include <filesystem>
#include <string>

namespace quorvel {

/// What a web clone's window is like when it is opened again.
struct WindowState {
    int width = 1100;
    int height = 760;
    int zoom = 100; ///< in percent
    bool isMaximized = false;
    bool isMuted = false;
    bool hidesHeader = false;
    std::string page{}; ///< the address of the last page; empty if none was shown

    bool operator==(const WindowState&) const = default;
};

/// The limits of `WindowState::zoom`.
inline constexpr int smallestZoom = 30;
inline constexpr int largestZoom = 500;

/// Returns what the file says. What is missing or makes no sense has its default value.
[[nodiscard]] WindowState readWindowState(const std::string& file);

/// Writes the file below `home`, as a whole, mode 0600. Returns whether that succeeded.
bool writeWindowState(const std::filesystem::path& home, const std::string& file,
                      const WindowState& state);

} // namespace quorvel

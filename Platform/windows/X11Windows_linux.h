#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

struct xcb_connection_t;

namespace quorvel {

/// A window that a window manager shows to the user.
struct X11Window {
    std::uint32_t id = 0;
    pid_t pid = 0; ///< 0 if the window does not say
    std::string instance{};
    std::string className{};
    std::string desktopFile{}; ///< KDE's hint for the menu entry, which precedes the class
};

/// A connection to the X server of this session, which may be one for X11 programs on Wayland.
class X11Windows {
public:
    /// Returns std::nullopt if there is no server.
    [[nodiscard]] static std::optional<X11Windows> connect();

    /// Returns the windows in their order on the screen, the topmost first. Docks and desktops are
    /// left out. Empty if no window manager runs.
    [[nodiscard]] std::vector<X11Window> list() const;

    /// Returns the window with the focus; 0 if none has it.
    [[nodiscard]] std::uint32_t active() const;

    /// Has desktops match the window to the menu entry of that name, as the application itself
    /// could: by its class, and by what KDE asks for first.
    void setIdentity(std::uint32_t window, const std::string& word) const;

    /// Waits until windows come or go, or the limit has passed. Returns false if the server is
    /// gone.
    [[nodiscard]] bool waitForChanges(std::chrono::milliseconds limit) const;

    /// Asks the window manager, as a pager does, to bring the window to the front.
    void activate(std::uint32_t window) const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const;
    };

    explicit X11Windows(xcb_connection_t* connection, std::uint32_t root);
    [[nodiscard]] std::uint32_t atom(const char* name) const;
    [[nodiscard]] std::vector<std::uint32_t> numbers(std::uint32_t window,
                                                     const char* property) const;
    [[nodiscard]] std::string text(std::uint32_t window, std::uint32_t property) const;
    [[nodiscard]] X11Window describe(std::uint32_t window) const;
    [[nodiscard]] bool isOfDesktop(std::uint32_t window) const;
    [[nodiscard]] bool takeEvents() const;

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    std::uint32_t root_;
};

} // namespace quorvel

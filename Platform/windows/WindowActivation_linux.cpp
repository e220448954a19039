#include "Platform/windows/WindowActivation_linux.h"

#include "Platform/processes/Process.h"
#include "Platform/programs/ProgramResolution.h"
#include "Platform/windows/PlasmaWindows_linux.h"
#include "Platform/windows/X11Windows_linux.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace quorvel {
namespace {

using namespace std::chrono_literals;

constexpr auto nap = 20ms;
constexpr auto patience = 1500ms; // of a desktop that is busy

bool isSet(const char* variable) {
    const char* value = std::getenv(variable); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr && *value != '\0';
}

bool owns(const WindowOwner& owner, const X11Window& window) {
    return owner.hasProcess(window.pid) || owner.hasClass(window.instance) ||
           owner.hasClass(window.className);
}

enum class Outcome { done, refused, noWindow };

bool isInFront(const X11Windows& screen, const WindowOwner& owner) {
    const std::uint32_t active = screen.active();
    const auto windows = screen.list();
    return std::any_of(windows.begin(), windows.end(), [&](const X11Window& window) {
        return window.id == active && owns(owner, window);
    });
}

Outcome activateOnX11(const WindowOwner& owner) {
    const auto screen = X11Windows::connect();
    if (!screen) {
        return Outcome::noWindow;
    }
    const auto windows = screen->list();
    const auto topmost = std::find_if(windows.begin(), windows.end(),
                                      [&](const X11Window& window) { return owns(owner, window); });
    if (topmost == windows.end()) {
        return Outcome::noWindow;
    }
    screen->activate(topmost->id);
    const auto deadline = std::chrono::steady_clock::now() + patience;
    // A dialog of the same application may get the focus instead.
    while (!isInFront(*screen, owner)) {
        if (std::chrono::steady_clock::now() > deadline) {
            return Outcome::refused;
        }
        std::this_thread::sleep_for(nap);
    }
    return Outcome::done;
}

// The compositor knows the process of every window, and answers once per command.
Outcome activateInSway(const WindowOwner& owner) {
    const auto client = findProgram("swaymsg");
    if (!client) {
        return Outcome::refused;
    }
    std::string commands;
    for (const pid_t pid : owner.processes) {
        commands += "[pid=" + std::to_string(pid) + "] focus;";
    }
    Process::Options options;
    options.executable = *client;
    options.arguments = {"-r", "--", commands};
    try {
        constexpr std::size_t limit = std::size_t{1} << 20U;
        const std::string answer = Process::capture(options, limit);
        const bool done = answer.find("\"success\": true") != std::string::npos ||
                          answer.find("\"success\":true") != std::string::npos;
        return done ? Outcome::done : Outcome::noWindow;
    } catch (const PlatformError&) {
        return Outcome::refused;
    }
}

} // namespace

std::optional<ActivationFailure> bringToFront(const WindowOwner& owner) {
    const bool wayland = isSet("WAYLAND_DISPLAY");
    if (isSet("SWAYSOCK")) {
        const Outcome outcome = activateInSway(owner);
        return outcome == Outcome::done       ? std::nullopt
               : outcome == Outcome::noWindow ? std::optional(ActivationFailure::noWindow)
                                              : std::optional(ActivationFailure::notAllowed);
    }
    Outcome outcome = Outcome::noWindow;
    if (isSet("DISPLAY")) {
        outcome = activateOnX11(owner);
    } else if (!wayland) {
        return ActivationFailure::noDisplay;
    }
    if (outcome == Outcome::noWindow && wayland && activateInPlasma(owner)) {
        outcome = Outcome::done;
    }
    if (outcome == Outcome::done) {
        return std::nullopt;
    }
    // A compositor does not say whether there is a window.
    return outcome == Outcome::refused || wayland ? ActivationFailure::notAllowed
                                                  : ActivationFailure::noWindow;
}

} // namespace quorvel

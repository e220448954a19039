#pragma once

#include <functional>
#include <memory>
#include <string>

namespace quorvel {

/// Returns a token by which the desktop knows that the user wants another program's window in
/// front; empty if there is none.
using ActivationTokenSource = std::function<std::string()>;

/// Gets such tokens from the compositor, for the last click or key in one of this program's
/// windows. Only Wayland has them, and only a build with Qt's private headers can ask for them.
class ActivationTokens {
public:
    /// To be constructed after the `QGuiApplication` and before its windows.
    ActivationTokens();
    ActivationTokens(const ActivationTokens&) = delete;
    ActivationTokens& operator=(const ActivationTokens&) = delete;
    ~ActivationTokens();

    /// Returns a token; empty if there is none. Waits for the compositor's answer for a quarter of
    /// a second at most. Main thread only.
    [[nodiscard]] std::string take() const;

private:
    class Clicks;
    std::unique_ptr<Clicks> clicks_;
};

} // namespace quorvel

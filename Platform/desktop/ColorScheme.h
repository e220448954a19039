#pragma once

#include <functional>
#include <memory>
#include <optional>

namespace quorvel {

/// The user's preferred color scheme.
enum class ColorScheme { light, dark };

/// Reports the desktop's color scheme where Qt cannot. Must be used on the main thread, whose event
/// loop delivers the changes.
class ColorSchemeSource {
public:
    ColorSchemeSource() = default;
    ColorSchemeSource(const ColorSchemeSource&) = delete;
    ColorSchemeSource& operator=(const ColorSchemeSource&) = delete;
    virtual ~ColorSchemeSource() = default;

    /// Returns the scheme, or std::nullopt if the desktop does not report one.
    [[nodiscard]] virtual std::optional<ColorScheme> current() const = 0;
};

/// Returns a source that has asked the desktop, for at most 100 ms, and calls `changed` on every
/// later change.
[[nodiscard]] std::unique_ptr<ColorSchemeSource>
makeColorSchemeSource(std::function<void()> changed);

} // namespace quorvel

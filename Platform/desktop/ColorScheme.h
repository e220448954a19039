#pragma once

#include <functional>
#include <memory>
#include <optional>

namespace quorvel {

/// What the desktop's user prefers.
enum class ColorScheme { light, dark };

/// Tells the desktop's appearance where the toolkit does not. Belongs to the main thread, whose
/// event loop brings the changes.
class ColorSchemeSource {
public:
    ColorSchemeSource() = default;
    ColorSchemeSource(const ColorSchemeSource&) = delete;
    ColorSchemeSource& operator=(const ColorSchemeSource&) = delete;
    virtual ~ColorSchemeSource() = default;

    /// Nothing when the desktop does not say.
    [[nodiscard]] virtual std::optional<ColorScheme> current() const = 0;
};

/// Asks the desktop, for at most a tenth of a second, and calls `changed` on every later change.
[[nodiscard]] std::unique_ptr<ColorSchemeSource>
makeColorSchemeSource(std::function<void()> changed);

} // namespace quorvel

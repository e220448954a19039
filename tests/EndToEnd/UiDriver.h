#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel::testing {

/// The kinds of controls that a test can look for.
enum class Control { any, button, field, checkBox, row };

/// A control on the screen, as assistive technology reports it, in screen pixels.
struct Element {
    std::string name{};
    std::string text{}; ///< a field's content
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool enabled = false;
    bool checked = false;
    bool active = false; ///< a window that has the keyboard

    bool operator==(const Element&) const = default;
};

/// Reads one application's windows and uses the mouse and the keyboard on them. Every function that
/// needs a control waits for it, and throws a `std::runtime_error` that lists what is shown instead
/// if it does not appear.
class UiDriver {
public:
    /// `application` is the name under which it offers itself to assistive technology.
    explicit UiDriver(std::string application);

    /// Returns the first element of that kind and name that is currently shown; `std::nullopt` if
    /// there is none.
    [[nodiscard]] std::optional<Element> find(Control control, std::string_view name) const;
    /// Waits for such an element and returns it.
    [[nodiscard]] Element waitFor(Control control, std::string_view name) const;
    /// Waits until no such element is shown.
    void waitUntilGone(Control control, std::string_view name) const;

    void click(Control control, std::string_view name) const;
    /// Turns the wheel over the element named `over` until the one looked for is above `bottom`.
    void scrollTo(Control control, std::string_view name, const Element& over, int bottom) const;
    /// Replaces a field's text.
    void fill(std::string_view field, const std::string& text) const;
    void type(const std::string& text) const;
    /// Presses a key with modifiers, such as "ctrl+n" or "Return".
    static void press(const std::string& keys);

    /// Returns whether a pixel of exactly that color ("#30C057") is within the element's bounds.
    [[nodiscard]] static bool hasColor(const Element& element, const std::string& color);

private:
    [[nodiscard]] std::string everythingShown() const;

    std::string application_;
};

} // namespace quorvel::testing

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel::testing {

/// What a person takes something on the screen for.
enum class Control { any, button, field, checkBox, row };

/// What stands on the screen: as assistive technology gives it, in the screen's pixels.
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

/// Somebody who looks at one application's windows, and uses the mouse and the keyboard. What is
/// looked for is waited for; what does not come makes a `std::runtime_error` that tells what there
/// is instead.
class Person {
public:
    /// `application` is the name under which it offers itself to assistive technology.
    explicit Person(std::string application);

    /// The first element shown of that kind and name, if there is one now.
    [[nodiscard]] std::optional<Element> glimpse(Control control, std::string_view name) const;
    /// The same, waited for.
    [[nodiscard]] Element see(Control control, std::string_view name) const;
    /// Waits until no such element is shown any more.
    void seeNoMore(Control control, std::string_view name) const;

    void click(Control control, std::string_view name) const;
    /// Turns the wheel over the element named `over` until the one looked for is above `bottom`.
    void scrollTo(Control control, std::string_view name, const Element& over, int bottom) const;
    /// Replaces what a field holds.
    void fill(std::string_view field, const std::string& text) const;
    void type(const std::string& text) const;
    /// A key with modifiers, such as "ctrl+n" or "Return".
    static void press(const std::string& keys);

    /// Whether a pixel of exactly that colour ("#30C057") is within the element's bounds.
    [[nodiscard]] static bool hasColor(const Element& element, const std::string& color);

private:
    [[nodiscard]] std::string everythingShown() const;

    std::string application_;
};

} // namespace quorvel::testing

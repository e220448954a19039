#include "tests/EndToEnd/UiDriver.h"

#include "Platform/processes/Process.h"
#include "tests/support/Waiting.h"

#include <atspi/atspi.h>
#include <memory>
#include <stdexcept>
#include <vector>

namespace quorvel::testing {
namespace {

constexpr int deepest = 40; // levels of widgets
constexpr int wheelTurns = 60;
constexpr std::size_t outputLimit = std::size_t{1} << 24U;

struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
};
template<typename Type>
using Ref = std::unique_ptr<Type, Unref>;
using Node = Ref<AtspiAccessible>;

std::string taken(char* text) {
    std::string copy = text != nullptr ? text : "";
    g_free(text);
    return copy;
}

std::vector<Node> childrenOf(AtspiAccessible* parent) {
    std::vector<Node> children;
    const int count = atspi_accessible_get_child_count(parent, nullptr);
    for (int index = 0; index < count; ++index) {
        // One that has vanished meanwhile is skipped.
        if (Node child{atspi_accessible_get_child_at_index(parent, index, nullptr)}) {
            children.push_back(std::move(child));
        }
    }
    return children;
}

bool isA(AtspiRole role, Control control) {
    switch (control) {
    case Control::button:
        return role == ATSPI_ROLE_PUSH_BUTTON || role == ATSPI_ROLE_TOGGLE_BUTTON;
    case Control::field:
        return role == ATSPI_ROLE_TEXT;
    case Control::checkBox:
        return role == ATSPI_ROLE_CHECK_BOX;
    case Control::row:
        return role == ATSPI_ROLE_LIST_ITEM;
    case Control::any:
        break;
    }
    return true;
}

std::string contentOf(AtspiAccessible* node) {
    const Ref<AtspiText> text{atspi_accessible_get_text_iface(node)};
    return text ? taken(atspi_text_get_text(text.get(), 0, -1, nullptr)) : std::string();
}

Element elementOf(AtspiAccessible* node, AtspiStateSet* states) {
    Element element;
    element.name = taken(atspi_accessible_get_name(node, nullptr));
    element.text = contentOf(node);
    element.enabled = atspi_state_set_contains(states, ATSPI_STATE_ENABLED) != 0;
    element.checked = atspi_state_set_contains(states, ATSPI_STATE_CHECKED) != 0;
    element.active = atspi_state_set_contains(states, ATSPI_STATE_ACTIVE) != 0;
    if (const Ref<AtspiComponent> component{atspi_accessible_get_component_iface(node)}) {
        if (AtspiRect* rect =
                atspi_component_get_extents(component.get(), ATSPI_COORD_TYPE_SCREEN, nullptr)) {
            element.x = rect->x;
            element.y = rect->y;
            element.width = rect->width;
            element.height = rect->height;
            g_free(rect);
        }
    }
    return element;
}

// Calls `look` with everything shown below the node until it returns true. Returns whether it did.
bool lookThrough(AtspiAccessible* node, const std::function<bool(AtspiAccessible*)>& look,
                 int depth = 0) {
    const Ref<AtspiStateSet> states{atspi_accessible_get_state_set(node)};
    const bool shown =
        depth == 0 || (states && atspi_state_set_contains(states.get(), ATSPI_STATE_SHOWING));
    if (!shown || depth > deepest) {
        return false;
    }
    if (depth > 0 && look(node)) {
        return true;
    }
    for (const Node& child : childrenOf(node)) {
        if (lookThrough(child.get(), look, depth + 1)) {
            return true;
        }
    }
    return false;
}

void lookAt(const std::string& application, const std::function<bool(AtspiAccessible*)>& look) {
    const Node desktop{atspi_get_desktop(0)};
    // What was seen before may have changed since.
    atspi_accessible_clear_cache(desktop.get());
    for (const Node& program : childrenOf(desktop.get())) {
        if (taken(atspi_accessible_get_name(program.get(), nullptr)) == application &&
            lookThrough(program.get(), look)) {
            return;
        }
    }
}

std::string run(const std::string& program, std::vector<std::string> arguments) {
    Process::Options options;
    options.executable = program;
    options.arguments = std::move(arguments);
    return Process::capture(options, outputLimit);
}

void xdotool(std::vector<std::string> arguments) {
    (void)run("/usr/bin/xdotool", std::move(arguments));
}

void pointAt(const Element& element) {
    xdotool({"mousemove", "--sync", std::to_string(element.x + element.width / 2),
             std::to_string(element.y + element.height / 2)});
}

} // namespace

UiDriver::UiDriver(std::string application) : application_(std::move(application)) {
    atspi_init();
}

std::optional<Element> UiDriver::find(Control control, std::string_view name) const {
    std::optional<Element> found;
    lookAt(application_, [&](AtspiAccessible* node) {
        if (!isA(atspi_accessible_get_role(node, nullptr), control) ||
            taken(atspi_accessible_get_name(node, nullptr)) != name) {
            return false;
        }
        const Ref<AtspiStateSet> states{atspi_accessible_get_state_set(node)};
        found = elementOf(node, states.get());
        return true;
    });
    return found;
}

Element UiDriver::waitFor(Control control, std::string_view name) const {
    std::optional<Element> found;
    if (!waitUntil([&] { return (found = find(control, name)).has_value(); })) {
        throw std::runtime_error("there is no “" + std::string(name) + "” among\n" +
                                 everythingShown());
    }
    return *found;
}

void UiDriver::waitUntilGone(Control control, std::string_view name) const {
    if (!waitUntil([&] { return !find(control, name); })) {
        throw std::runtime_error("“" + std::string(name) + "” is still shown among\n" +
                                 everythingShown());
    }
}

void UiDriver::click(Control control, std::string_view name) const {
    // What still moves would be missed.
    Element element;
    if (!waitUntil([&] {
            element = waitFor(control, name);
            return element.enabled && element == waitFor(control, name);
        })) {
        throw std::runtime_error("“" + std::string(name) + "” can't be used");
    }
    pointAt(element);
    xdotool({"click", "1"});
}

void UiDriver::scrollTo(Control control, std::string_view name, const Element& over,
                        int bottom) const {
    pointAt(over);
    for (int turn = 0; turn < wheelTurns; ++turn) {
        const std::optional<Element> element = find(control, name);
        if (element && element->y + element->height < bottom) {
            return;
        }
        xdotool({"click", "5"});
    }
    throw std::runtime_error("“" + std::string(name) + "” does not scroll into view");
}

void UiDriver::fill(std::string_view field, const std::string& text) const {
    click(Control::field, field);
    press("ctrl+a");
    type(text);
    if (!waitUntil([&] { return waitFor(Control::field, field).text == text; })) {
        throw std::runtime_error("the field “" + std::string(field) + "” holds “" +
                                 waitFor(Control::field, field).text + "”");
    }
}

void UiDriver::type(const std::string& text) const {
    xdotool({"type", "--delay", "15", "--", text});
}

void UiDriver::press(const std::string& keys) {
    xdotool({"key", keys});
}

bool UiDriver::hasColor(const Element& element, const std::string& color) {
    const std::string area = std::to_string(element.width) + "x" + std::to_string(element.height) +
                             "+" + std::to_string(element.x) + "+" + std::to_string(element.y);
    return run("/usr/bin/import",
               {"-silent", "-window", "root", "-crop", area, "-depth", "8", "txt:-"})
               .find(color) != std::string::npos;
}

std::string UiDriver::everythingShown() const {
    std::string all;
    lookAt(application_, [&](AtspiAccessible* node) {
        const std::string name = taken(atspi_accessible_get_name(node, nullptr));
        if (!name.empty()) {
            all +=
                "  " + taken(atspi_accessible_get_role_name(node, nullptr)) + " “" + name + "”\n";
        }
        return false;
    });
    return all;
}

} // namespace quorvel::testing

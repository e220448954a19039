// Uses an application's controls as assistive technology does: accessible names|press NAME
// [WINDOW]. "names" prints a line for each control: its role, a tab, its name. Only windows whose
// title contains WINDOW are looked through.
#include <atspi/atspi.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace {

struct Releaser {
    void operator()(AtspiAccessible* item) const { g_object_unref(item); }
};
using Item = std::unique_ptr<AtspiAccessible, Releaser>;

std::string taken(char* text) {
    std::string result = text == nullptr ? "" : text;
    g_free(text);
    return result;
}

std::string nameOf(AtspiAccessible* item) {
    return taken(atspi_accessible_get_name(item, nullptr));
}

// Visits the controls until one is what is looked for. Returns whether one was.
bool visit(AtspiAccessible* item, const std::string& window,
           const std::function<bool(AtspiAccessible*)>& isIt, int depth = 0) {
    constexpr int deepest = 40;
    constexpr int windows = 2; // of an application on the desktop
    if (depth == windows && nameOf(item).find(window) == std::string::npos) {
        return false;
    }
    if (isIt(item)) {
        return true;
    }
    const int count = depth < deepest ? atspi_accessible_get_child_count(item, nullptr) : 0;
    for (int index = 0; index < count; ++index) {
        const Item child(atspi_accessible_get_child_at_index(item, index, nullptr));
        if (child && visit(child.get(), window, isIt, depth + 1)) {
            return true;
        }
    }
    return false;
}

// A dialog's buttons have their text twice, and their labels do nothing.
bool isNamed(AtspiAccessible* item, const std::string& wanted) {
    const std::string name = nameOf(item);
    return (name == wanted || name == wanted + " " + wanted) &&
           atspi_accessible_get_role(item, nullptr) != ATSPI_ROLE_LABEL;
}

bool press(AtspiAccessible* item) {
    AtspiAction* action = atspi_accessible_get_action_iface(item);
    const bool isDone = action != nullptr && atspi_action_do_action(action, 0, nullptr) == TRUE;
    g_clear_object(&action);
    return isDone;
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view command = argc > 1 ? argv[1] : "names";
    const std::string wanted = argc > 2 ? argv[2] : "";
    const std::string window = argc > 3 ? argv[3] : "";
    if (atspi_init() != 0) {
        std::fputs("no assistive technology\n", stderr);
        return 1;
    }
    const Item desktop(atspi_get_desktop(0));
    const bool isDone = visit(desktop.get(), window, [&](AtspiAccessible* item) {
        if (command == "press") {
            return isNamed(item, wanted) && press(item);
        }
        std::printf("%s\t%s\n", taken(atspi_accessible_get_role_name(item, nullptr)).c_str(),
                    nameOf(item).c_str());
        return false;
    });
    return command != "press" || isDone ? 0 : 1;
}

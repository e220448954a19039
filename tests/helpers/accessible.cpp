// Uses an application's controls as assistive technology does: accessible names|press|press-all
// NAME. "names" prints a line for each control: its role, a tab, its name. "press" presses the
// first one of that name, "press-all" each, in all windows.
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

// Visits the controls until one is what is looked for. Returns whether one was.
bool visit(AtspiAccessible* item, const std::function<bool(AtspiAccessible*)>& isIt, int depth) {
    constexpr int deepest = 40;
    if (isIt(item)) {
        return true;
    }
    const int count = depth < deepest ? atspi_accessible_get_child_count(item, nullptr) : 0;
    for (int index = 0; index < count; ++index) {
        const Item child(atspi_accessible_get_child_at_index(item, index, nullptr));
        if (child && visit(child.get(), isIt, depth + 1)) {
            return true;
        }
    }
    return false;
}

std::string nameOf(AtspiAccessible* item) {
    return taken(atspi_accessible_get_name(item, nullptr));
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
    if (atspi_init() != 0) {
        std::fputs("no assistive technology\n", stderr);
        return 1;
    }
    const Item desktop(atspi_get_desktop(0));
    const bool isDone = visit(
        desktop.get(),
        [&](AtspiAccessible* item) {
            if (command.starts_with("press")) {
                return isNamed(item, wanted) && press(item) && command == "press";
            }
            std::printf("%s\t%s\n", taken(atspi_accessible_get_role_name(item, nullptr)).c_str(),
                        nameOf(item).c_str());
            return false;
        },
        0);
    return command != "press" || isDone ? 0 : 1;
}

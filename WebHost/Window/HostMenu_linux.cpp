#include "WebHost/Window/HostMenu_linux.h"

#include "WebHost/Settings/SettingsRows_linux.h"

#include <array>
#include <span>

namespace quorvel {
namespace {

GMenuModel* menuModel(bool isMain) {
    GMenu* const menu = g_menu_new();
    const auto section = [&](std::initializer_list<std::array<const char*, 2>> items) {
        GMenu* const part = g_menu_new();
        for (const auto& [text, action] : items) {
            g_menu_append(part, text, action);
        }
        g_menu_append_section(menu, nullptr, G_MENU_MODEL(part));
        g_object_unref(part);
    };
    section({{"Find…", "win.find"}, {"Print…", "win.print"}, {"Copy Link", "win.copy-link"}});
    section({{"Zoom In", "win.zoom-in"},
             {"Zoom Out", "win.zoom-out"},
             {"Actual Size", "win.zoom-reset"},
             {"Full Screen", "win.full-screen"},
             {"Show Header", "win.header"},
             {"Mute", "win.mute"}});
    if (isMain) {
        section({{"Site Settings…", "win.settings"}});
    }
    section({{"Close", "win.close"}, {"Quit", "win.quit"}});
    return G_MENU_MODEL(menu);
}

using Shortcut = std::array<const char*, 2>; // its keys and its action

void addShortcuts(GtkWidget* window, std::span<const Shortcut> shortcuts,
                  GtkPropagationPhase phase) {
    GtkEventController* const controller = gtk_shortcut_controller_new();
    gtk_shortcut_controller_set_scope(GTK_SHORTCUT_CONTROLLER(controller),
                                      GTK_SHORTCUT_SCOPE_MANAGED);
    for (const auto& [keys, action] : shortcuts) {
        gtk_shortcut_controller_add_shortcut(
            GTK_SHORTCUT_CONTROLLER(controller),
            gtk_shortcut_new(gtk_shortcut_trigger_parse_string(keys),
                             gtk_named_action_new(action)));
    }
    gtk_event_controller_set_propagation_phase(controller, phase);
    gtk_widget_add_controller(window, controller);
}

} // namespace

GtkWidget* newHostMenuButton(bool isMainWindow) {
    GtkWidget* const menu = gtk_menu_button_new();
    gtk_menu_button_set_icon_name(GTK_MENU_BUTTON(menu), "open-menu-symbolic");
    gtk_widget_set_tooltip_text(menu, "Menu");
    nameControl(menu, "Menu");
    GMenuModel* const model = menuModel(isMainWindow);
    gtk_menu_button_set_menu_model(GTK_MENU_BUTTON(menu), model);
    g_object_unref(model);
    return menu;
}

void addHostShortcuts(GtkWidget* window) {
    static constexpr std::array<Shortcut, 21> shortcuts{{
        {"<Alt>Left", "win.back"},
        {"<Alt>Right", "win.forward"},
        {"<Control>r", "win.reload"},
        {"F5", "win.reload"},
        {"<Control><Shift>r", "win.force-reload"},
        {"<Alt>Home", "win.home"},
        {"<Control>f", "win.find"},
        {"<Control>g", "win.find-next"},
        {"<Control><Shift>g", "win.find-previous"},
        {"Escape", "win.escape"},
        {"<Control>plus", "win.zoom-in"},
        {"<Control>equal", "win.zoom-in"},
        {"<Control>KP_Add", "win.zoom-in"},
        {"<Control>minus", "win.zoom-out"},
        {"<Control>0", "win.zoom-reset"},
        {"F11", "win.full-screen"},
        {"<Control>p", "win.print"},
        {"<Control><Shift>c", "win.copy-link"},
        {"<Control>m", "win.mute"},
        {"<Control><Shift>h", "win.header"},
        {"<Control>comma", "win.settings"},
    }};
    // A page that hangs never returns the keys that it is given first.
    static constexpr std::array<Shortcut, 2> closing{
        {{"<Control>w", "win.close"}, {"<Control>q", "win.quit"}}};
    addShortcuts(window, shortcuts, GTK_PHASE_BUBBLE);
    addShortcuts(window, closing, GTK_PHASE_CAPTURE);
}

GtkWidget* newHostButton(const char* icon, const char* tooltip, const char* action) {
    GtkWidget* const made = gtk_button_new_from_icon_name(icon);
    gtk_widget_set_tooltip_text(made, tooltip);
    nameControl(made, tooltip);
    gtk_actionable_set_action_name(GTK_ACTIONABLE(made), action);
    return made;
}

} // namespace quorvel

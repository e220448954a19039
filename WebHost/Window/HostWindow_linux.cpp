#include "WebHost/Window/HostWindow_linux.h"

#include "WebHost/GtkTypes_linux.h"
#include "WebHost/Pages/PageTitle.h"
#include "WebHost/Settings/SettingsRows_linux.h"
#include "WebHost/Window/HostMenu_linux.h"

#include <gdk/wayland/gdkwayland.h>
#include <gdk/x11/gdkx.h>

#include <algorithm>
#include <array>

namespace quorvel {
namespace {

constexpr int zoomStep = 10;

HostWindow& of(gpointer self) {
    return *static_cast<HostWindow*>(self);
}

GtkWidget* label(const char* style) {
    GtkWidget* const made = gtk_label_new(nullptr);
    gtk_label_set_ellipsize(GTK_LABEL(made), PANGO_ELLIPSIZE_END);
    gtk_widget_add_css_class(made, style);
    return made;
}

} // namespace

HostWindow::HostWindow(WebKitWebView* view, Actions actions, const WindowState& state,
                       const std::string& iconName)
    : window_(GTK_WINDOW(gtk_window_new())),
      view_(view),
      actions_(std::move(actions)),
      state_(state) {
    // The modal dialogs of its page must not block other windows.
    GtkWindowGroup* const group = gtk_window_group_new();
    gtk_window_group_add_window(group, window_);
    g_object_unref(group);
    gtk_window_set_default_size(window_, state.width, state.height);
    if (!iconName.empty()) {
        gtk_window_set_icon_name(window_, iconName.c_str());
    }
    if (state.isMaximized) {
        gtk_window_maximize(window_);
    }
    buildHeader();
    buildBars();
    gtk_widget_insert_action_group(GTK_WIDGET(window_), "win", G_ACTION_GROUP(group_));
    g_object_unref(group_);
    addNavigation();
    addCommands();
    enable("header", static_cast<bool>(actions_.home)); // a pop-up always shows its host
    addHostShortcuts(GTK_WIDGET(window_));
    countGestures();
    watch();
    zoomTo(state.zoom);
    webkit_web_view_set_is_muted(view_, state.isMuted ? TRUE : FALSE);
    gtk_widget_set_visible(header_, state.hidesHeader ? FALSE : TRUE);
    gtk_widget_grab_focus(GTK_WIDGET(view_));
}

HostWindow::~HostWindow() {
    if (messageTimer_ != 0) {
        g_source_remove(messageTimer_);
    }
    g_signal_handlers_disconnect_by_data(window_, this);
    g_signal_handlers_disconnect_by_data(view_, this);
    gtk_window_destroy(window_);
}

void HostWindow::buildHeader() {
    header_ = gtk_header_bar_new();
    GtkHeaderBar* const bar = GTK_HEADER_BAR(header_);
    gtk_header_bar_pack_start(bar, newHostButton("go-previous-symbolic", "Back", "win.back"));
    gtk_header_bar_pack_start(bar, newHostButton("go-next-symbolic", "Forward", "win.forward"));
    reload_ = newHostButton("view-refresh-symbolic", "Reload", "win.reload");
    gtk_header_bar_pack_start(bar, reload_);
    if (actions_.home) {
        gtk_header_bar_pack_start(bar, newHostButton("go-home-symbolic", "Home", "win.home"));
    }
    gtk_header_bar_pack_end(bar, newHostMenuButton(static_cast<bool>(actions_.home)));
    GtkWidget* const titles = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_widget_set_valign(titles, GTK_ALIGN_CENTER);
    title_ = label("title");
    host_ = label("subtitle");
    gtk_box_append(GTK_BOX(titles), title_);
    gtk_box_append(GTK_BOX(titles), host_);
    gtk_header_bar_set_title_widget(bar, titles);
    gtk_window_set_titlebar(window_, header_);
}

void HostWindow::buildBars() {
    GtkWidget* const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    findBar_ = gtk_search_bar_new();
    findEntry_ = gtk_search_entry_new();
    nameControl(findEntry_, "Find");
    gtk_search_bar_set_child(GTK_SEARCH_BAR(findBar_), findEntry_);
    gtk_search_bar_connect_entry(GTK_SEARCH_BAR(findBar_), GTK_EDITABLE(findEntry_));
    gtk_search_bar_set_show_close_button(GTK_SEARCH_BAR(findBar_), TRUE);

    downloadBar_ = newHostBar(downloadText_);
    GtkWidget* const cancel = gtk_button_new_from_icon_name("window-close-symbolic");
    gtk_widget_set_tooltip_text(cancel, "Cancel or Close");
    nameControl(cancel, "Cancel or Close");
    gtk_box_append(GTK_BOX(downloadBar_), cancel);
    onSignal(
        cancel, "clicked",
        [](GtkButton*, gpointer self) {
            const auto cancelled = std::exchange(of(self).downloadsCancelled_, {});
            gtk_widget_set_visible(of(self).downloadBar_, FALSE);
            if (cancelled) {
                cancelled();
            }
        },
        this);

    GtkWidget* const overlay = gtk_overlay_new();
    gtk_overlay_set_child(GTK_OVERLAY(overlay), GTK_WIDGET(view_));
    message_ = gtk_label_new(nullptr);
    gtk_widget_add_css_class(message_, "osd");
    gtk_widget_set_halign(message_, GTK_ALIGN_CENTER);
    gtk_widget_set_valign(message_, GTK_ALIGN_START);
    gtk_widget_set_visible(message_, FALSE);
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay), message_);
    gtk_widget_set_vexpand(overlay, TRUE);
    for (GtkWidget* each :
         {offer_.widget(), questions_.widget(), findBar_, overlay, downloadBar_}) {
        gtk_box_append(GTK_BOX(box), each);
    }
    gtk_window_set_child(window_, box);
}

void HostWindow::addActions(std::span<const Action> actions) {
    for (const Action& entry : actions) {
        GSimpleAction* const action = g_simple_action_new(entry.name, nullptr);
        g_object_set_data(G_OBJECT(action), "window", this);
        onSignal(
            action, "activate",
            [](GSimpleAction* activated, GVariant*, gpointer data) {
                static_cast<const Action*>(data)->act(
                    of(g_object_get_data(G_OBJECT(activated), "window")));
            },
            const_cast<Action*>(&entry)); // NOLINT: as the interface wants it
        g_action_map_add_action(G_ACTION_MAP(group_), G_ACTION(action));
        g_object_unref(action);
    }
}

void HostWindow::addNavigation() {
    static constexpr std::array<Action, 9> actions{{
        {"back", [](HostWindow& w) { webkit_web_view_go_back(w.view_); }},
        {"forward", [](HostWindow& w) { webkit_web_view_go_forward(w.view_); }},
        {"reload",
         [](HostWindow& w) {
             if (webkit_web_view_is_loading(w.view_) == TRUE) {
                 webkit_web_view_stop_loading(w.view_);
             } else {
                 webkit_web_view_reload(w.view_);
             }
         }},
        {"force-reload", [](HostWindow& w) { webkit_web_view_reload_bypass_cache(w.view_); }},
        {"home",
         [](HostWindow& w) {
             if (w.actions_.home) {
                 w.actions_.home();
             }
         }},
        {"find", [](HostWindow& w) { w.setFind(true); }},
        {"find-next", [](HostWindow& w) { w.find(true); }},
        {"find-previous", [](HostWindow& w) { w.find(false); }},
        {"escape",
         [](HostWindow& w) {
             w.setFind(false);
             webkit_web_view_stop_loading(w.view_);
             if (gtk_window_is_fullscreen(w.window_) == TRUE) {
                 w.toggleFullScreen();
             }
         }},
    }};
    addActions(actions);
}

void HostWindow::addCommands() {
    static constexpr std::array<Action, 11> actions{{
        {"zoom-in", [](HostWindow& w) { w.zoomTo(w.state_.zoom + zoomStep); }},
        {"zoom-out", [](HostWindow& w) { w.zoomTo(w.state_.zoom - zoomStep); }},
        {"zoom-reset", [](HostWindow& w) { w.zoomTo(100); }},
        {"full-screen", [](HostWindow& w) { w.toggleFullScreen(); }},
        {"header", [](HostWindow& w) { w.toggleHeader(); }},
        {"print", [](HostWindow& w) { w.print(); }},
        {"copy-link", [](HostWindow& w) { w.copyAddress(); }},
        {"mute",
         [](HostWindow& w) {
             w.state_.isMuted = !w.state_.isMuted;
             webkit_web_view_set_is_muted(w.view_, w.state_.isMuted ? TRUE : FALSE);
             w.showMessage(w.state_.isMuted ? "Sound off" : "Sound on");
         }},
        {"settings",
         [](HostWindow& w) {
             if (w.actions_.settings) {
                 w.actions_.settings();
             }
         }},
        {"close", [](HostWindow& w) { w.actions_.closeRequested(); }},
        {"quit", [](HostWindow& w) { w.actions_.quit(); }},
    }};
    addActions(actions);
}

void HostWindow::countGestures() {
    GtkGesture* const click = gtk_gesture_click_new();
    gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(click), 0);
    gtk_event_controller_set_propagation_phase(GTK_EVENT_CONTROLLER(click), GTK_PHASE_CAPTURE);
    onSignal(
        click, "pressed",
        [](GtkGestureClick*, int, double, double, gpointer self) { ++of(self).gestures_; }, this);
    gtk_widget_add_controller(GTK_WIDGET(window_), GTK_EVENT_CONTROLLER(click));
    GtkEventController* const keys = gtk_event_controller_key_new();
    gtk_event_controller_set_propagation_phase(keys, GTK_PHASE_CAPTURE);
    onSignal(
        keys, "key-pressed",
        [](GtkEventControllerKey*, guint, guint, GdkModifierType, gpointer self) -> gboolean {
            ++of(self).gestures_;
            return FALSE;
        },
        this);
    gtk_widget_add_controller(GTK_WIDGET(window_), keys);
}

void HostWindow::watch() {
    onSignal(
        window_, "close-request",
        [](GtkWindow*, gpointer self) -> gboolean {
            of(self).actions_.closeRequested();
            return TRUE;
        },
        this);
    onSignal(
        findEntry_, "search-changed", [](GtkSearchEntry*, gpointer self) { of(self).find(true); },
        this);
    onSignal(
        findEntry_, "activate", [](GtkSearchEntry*, gpointer self) { of(self).find(true); }, this);
    onSignal(
        findEntry_, "stop-search", [](GtkSearchEntry*, gpointer self) { of(self).setFind(false); },
        this);
    onSignal(
        view_, "notify::is-loading",
        [](WebKitWebView* view, GParamSpec*, gpointer self) {
            const bool isLoading = webkit_web_view_is_loading(view) == TRUE;
            gtk_button_set_icon_name(GTK_BUTTON(of(self).reload_),
                                     isLoading ? "process-stop-symbolic" : "view-refresh-symbolic");
            gtk_widget_set_tooltip_text(of(self).reload_, isLoading ? "Stop" : "Reload");
        },
        this);
    onSignal(
        view_, "enter-fullscreen",
        [](WebKitWebView*, gpointer self) -> gboolean {
            of(self).showMessage(textOf(g_get_application_name()) +
                                 " is full screen. Press Esc to leave.");
            return FALSE;
        },
        this);
}

void HostWindow::show() {
    gtk_window_present(window_);
}

void HostWindow::present(const std::string& token) {
    if (!token.empty()) {
        gtk_window_set_startup_id(window_, token.c_str());
        // Older versions of the toolkit use only what the display knows.
        GdkDisplay* const display = gtk_widget_get_display(GTK_WIDGET(window_));
        if (GDK_IS_WAYLAND_DISPLAY(display)) {
            gdk_wayland_display_set_startup_notification_id(display, token.c_str());
        }
    }
    GdkSurface* const surface = gtk_native_get_surface(GTK_NATIVE(window_));
    if (surface != nullptr && GDK_IS_X11_SURFACE(surface)) {
        // Window managers hold back windows that don't say when the user asked for them.
        gtk_window_present_with_time(window_, gdk_x11_get_server_time(surface));
    } else {
        gtk_window_present(window_);
    }
}

void HostWindow::setTitle(const std::string& windowTitle, const std::string& pageTitle) {
    gtk_window_set_title(window_, windowTitle.c_str());
    gtk_label_set_text(GTK_LABEL(title_), pageTitle.c_str());
}

void HostWindow::updateLocation(const std::string& address, bool isExcepted) {
    address_ = address;
    gtk_label_set_text(GTK_LABEL(host_), shownHost(address, isExcepted).c_str());
    enable("back", webkit_web_view_can_go_back(view_) == TRUE);
    enable("forward", webkit_web_view_can_go_forward(view_) == TRUE);
}

void HostWindow::enable(const char* action, bool isEnabled) {
    GAction* const found = g_action_map_lookup_action(G_ACTION_MAP(group_), action);
    g_simple_action_set_enabled(G_SIMPLE_ACTION(found), isEnabled ? TRUE : FALSE);
}

void HostWindow::showDownloads(const std::string& text, std::function<void()> cancelled) {
    downloadsCancelled_ = std::move(cancelled);
    gtk_label_set_text(GTK_LABEL(downloadText_), text.c_str());
    gtk_widget_set_visible(downloadBar_, text.empty() ? FALSE : TRUE);
}

void HostWindow::showMessage(const std::string& text) {
    constexpr guint seconds = 3;
    if (messageTimer_ != 0) {
        g_source_remove(messageTimer_);
    }
    gtk_label_set_text(GTK_LABEL(message_), text.c_str());
    gtk_widget_set_visible(message_, TRUE);
    messageTimer_ = g_timeout_add_seconds(
        seconds,
        [](gpointer self) -> gboolean {
            of(self).messageTimer_ = 0;
            gtk_widget_set_visible(of(self).message_, FALSE);
            return G_SOURCE_REMOVE;
        },
        this);
}

WindowState HostWindow::state() const {
    WindowState now = state_;
    if (gtk_window_is_maximized(window_) == FALSE && gtk_window_is_fullscreen(window_) == FALSE) {
        gtk_window_get_default_size(window_, &now.width, &now.height);
    }
    now.isMaximized = gtk_window_is_maximized(window_) == TRUE;
    if (!address_.empty()) {
        now.page = address_;
    }
    return now;
}

void HostWindow::zoomTo(int percent) {
    state_.zoom = std::clamp(percent, smallestZoom, largestZoom);
    webkit_web_view_set_zoom_level(view_, state_.zoom / 100.0);
}

void HostWindow::setFind(bool isShown) {
    gtk_search_bar_set_search_mode(GTK_SEARCH_BAR(findBar_), isShown ? TRUE : FALSE);
    if (isShown) {
        gtk_widget_grab_focus(findEntry_);
    } else {
        webkit_find_controller_search_finish(webkit_web_view_get_find_controller(view_));
        gtk_widget_grab_focus(GTK_WIDGET(view_));
    }
}

void HostWindow::find(bool forward) {
    constexpr guint mostMatches = 1000;
    WebKitFindController* const finder = webkit_web_view_get_find_controller(view_);
    const std::string text = gtk_editable_get_text(GTK_EDITABLE(findEntry_));
    if (text.empty()) {
        webkit_find_controller_search_finish(finder);
    } else if (text != textOf(webkit_find_controller_get_search_text(finder))) {
        webkit_find_controller_search(
            finder, text.c_str(),
            WEBKIT_FIND_OPTIONS_CASE_INSENSITIVE | WEBKIT_FIND_OPTIONS_WRAP_AROUND, mostMatches);
    } else if (forward) {
        webkit_find_controller_search_next(finder);
    } else {
        webkit_find_controller_search_previous(finder);
    }
}

void HostWindow::toggleHeader() {
    state_.hidesHeader = !state_.hidesHeader;
    gtk_widget_set_visible(header_, state_.hidesHeader ? FALSE : TRUE);
    if (state_.hidesHeader) {
        showMessage("Ctrl+Shift+H shows the header again");
    }
}

void HostWindow::toggleFullScreen() {
    if (gtk_window_is_fullscreen(window_) == TRUE) {
        gtk_window_unfullscreen(window_);
    } else {
        gtk_window_fullscreen(window_);
        showMessage("Press F11 to leave full screen");
    }
}

void HostWindow::print() {
    WebKitPrintOperation* const operation = webkit_print_operation_new(view_);
    webkit_print_operation_run_dialog(operation, window_);
    g_object_unref(operation);
}

void HostWindow::copyAddress() {
    gdk_clipboard_set_text(gtk_widget_get_clipboard(GTK_WIDGET(window_)), address_.c_str());
    showMessage("Link copied");
}

} // namespace quorvel

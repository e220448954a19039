// A window with a page and nothing else, which a web clone's is compared with: bare_web_window
// ADDRESS FOLDER software|default.
#include <webkit/webkit.h>

#include <string>

int main(int count, char** arguments) {
    if (count != 4) {
        return 1;
    }
    const bool isSoftware = std::string(arguments[3]) == "software";
    if (isSoftware) {
        g_setenv("GSK_RENDERER", "cairo", TRUE);
    }
    if (gtk_init_check() == FALSE) {
        return 1;
    }
    const std::string folder = arguments[2];
    WebKitNetworkSession* const session =
        webkit_network_session_new((folder + "/data").c_str(), (folder + "/cache").c_str());
    GtkWidget* const view =
        GTK_WIDGET(g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session", session, nullptr));
    if (isSoftware) {
        webkit_settings_set_hardware_acceleration_policy(
            webkit_web_view_get_settings(WEBKIT_WEB_VIEW(view)),
            WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    }
    GtkWidget* const window = gtk_window_new();
    gtk_window_set_default_size(GTK_WINDOW(window), 1100, 760);
    gtk_window_set_child(GTK_WINDOW(window), view);
    webkit_web_view_load_uri(WEBKIT_WEB_VIEW(view), arguments[1]);
    gtk_window_present(GTK_WINDOW(window));
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
    return 0;
}

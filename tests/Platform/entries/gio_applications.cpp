// gio_applications: prints the applications that GIO would show, one per line: id, name, command,
// icon. A separate program, since GIO asks for the folders only once.
#include <gio/gdesktopappinfo.h>
#include <iostream>

namespace {

const char* orNothing(const char* text) {
    return text == nullptr ? "" : text;
}

} // namespace

int main() {
    GList* all = g_app_info_get_all();
    for (const GList* item = all; item != nullptr; item = item->next) {
        GAppInfo* info = G_APP_INFO(item->data);
        GDesktopAppInfo* entry = G_DESKTOP_APP_INFO(item->data);
        if (g_app_info_should_show(info) == FALSE ||
            g_desktop_app_info_get_boolean(entry, "Terminal") != FALSE) {
            continue;
        }
        char* icon = g_desktop_app_info_get_string(entry, "Icon");
        std::cout << g_app_info_get_id(info) << "\t" << g_app_info_get_name(info) << "\t"
                  << orNothing(g_app_info_get_commandline(info)) << "\t" << orNothing(icon) << "\n";
        g_free(icon);
    }
    g_list_free_full(all, g_object_unref);
    return 0;
}

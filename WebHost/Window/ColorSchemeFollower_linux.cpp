#include "WebHost/Window/ColorSchemeFollower_linux.h"

#include <gtk/gtk.h>

namespace quorvel {
namespace {

constexpr const char* portal = "org.freedesktop.portal.Desktop";
constexpr const char* path = "/org/freedesktop/portal/desktop";
constexpr const char* interface = "org.freedesktop.portal.Settings";
constexpr const char* group = "org.freedesktop.appearance";
constexpr const char* key = "color-scheme";
constexpr const char* property = "gtk-application-prefer-dark-theme";

ColorSchemeFollower& of(gpointer self) {
    return *static_cast<ColorSchemeFollower*>(self);
}

bool isToolkitDark() {
    gboolean isDark = FALSE;
    if (GtkSettings* const settings = gtk_settings_get_default(); settings != nullptr) {
        g_object_get(settings, property, &isDark, nullptr);
    }
    return isDark == TRUE;
}

} // namespace

ColorSchemeFollower::ColorSchemeFollower(GDBusConnection* bus)
    : bus_(bus),
      isDesktopDark_(isToolkitDark()),
      subscription_(g_dbus_connection_signal_subscribe(bus, portal, interface, "SettingChanged",
                                                       path, group, G_DBUS_SIGNAL_FLAGS_NONE,
                                                       changed, this, nullptr)) {
    g_dbus_connection_call(bus, portal, path, interface, "Read", g_variant_new("(ss)", group, key),
                           G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NONE, -1, cancellable_.get(),
                           answered, this);
}

ColorSchemeFollower::~ColorSchemeFollower() {
    g_cancellable_cancel(cancellable_.get());
    g_dbus_connection_signal_unsubscribe(bus_, subscription_);
}

void ColorSchemeFollower::setColors(PageColors colors) {
    colors_ = colors;
    apply();
}

// The value may be wrapped in several variants: 1 is dark, 2 light, 0 no preference.
void ColorSchemeFollower::desktopSays(GVariant* value) {
    constexpr guint32 dark = 1;
    GVariant* inner = g_variant_ref(value);
    while (g_variant_is_of_type(inner, G_VARIANT_TYPE_VARIANT) == TRUE) {
        GVariant* const next = g_variant_get_variant(inner);
        g_variant_unref(inner);
        inner = next;
    }
    if (g_variant_is_of_type(inner, G_VARIANT_TYPE_UINT32) == TRUE) {
        isDesktopDark_ = g_variant_get_uint32(inner) == dark;
        apply();
    }
    g_variant_unref(inner);
}

void ColorSchemeFollower::apply() const {
    const bool isDark =
        colors_ == PageColors::system ? isDesktopDark_ : colors_ == PageColors::dark;
    if (GtkSettings* const settings = gtk_settings_get_default(); settings != nullptr) {
        g_object_set(settings, property, isDark ? TRUE : FALSE, nullptr);
    }
}

// If there is no answer, the destructor may have cancelled the call.
void ColorSchemeFollower::answered(GObject* source, GAsyncResult* result, gpointer self) {
    GVariant* const answer =
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr);
    if (answer != nullptr) {
        GVariant* const value = g_variant_get_child_value(answer, 0);
        of(self).desktopSays(value);
        g_variant_unref(value);
        g_variant_unref(answer);
    }
}

void ColorSchemeFollower::changed(GDBusConnection* /*bus*/, const char* /*sender*/,
                                  const char* /*path*/, const char* /*interface*/,
                                  const char* /*signal*/, GVariant* values, gpointer self) {
    if (g_variant_is_of_type(values, G_VARIANT_TYPE("(ssv)")) == FALSE) {
        return;
    }
    const char* changedKey = nullptr;
    GVariant* value = nullptr;
    g_variant_get(values, "(&s&sv)", nullptr, &changedKey, &value);
    if (g_strcmp0(changedKey, key) == 0) {
        of(self).desktopSays(value);
    }
    g_variant_unref(value);
}

} // namespace quorvel

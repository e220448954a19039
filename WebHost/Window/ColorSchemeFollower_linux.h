#pragma once

#include "WebHost/GtkTypes_linux.h"
#include "WebHost/Settings/SiteSettings.h"

#include <gio/gio.h>

namespace quorvel {

/// Makes the windows, and with them the pages, light or dark as the desktop's setting says.
class ColorSchemeFollower {
public:
    explicit ColorSchemeFollower(GDBusConnection* bus);
    ColorSchemeFollower(const ColorSchemeFollower&) = delete;
    ColorSchemeFollower& operator=(const ColorSchemeFollower&) = delete;
    ~ColorSchemeFollower();

    /// Makes them always light, always dark, or as the desktop's setting says.
    void setColors(PageColors colors);

private:
    static void answered(GObject* source, GAsyncResult* result, gpointer self);
    static void changed(GDBusConnection* bus, const char* sender, const char* path,
                        const char* interface, const char* signal, GVariant* values, gpointer self);

    void desktopSays(GVariant* value);
    void apply() const;

    GDBusConnection* bus_;
    ObjectRef<GCancellable> cancellable_{g_cancellable_new()};
    PageColors colors_ = PageColors::system;
    bool isDesktopDark_;
    guint subscription_;
};

} // namespace quorvel

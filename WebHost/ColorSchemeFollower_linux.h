#pragma once

#include "WebHost/GtkTypes_linux.h"

#include <gio/gio.h>

namespace quorvel {

/// Makes the windows, and by them the pages, light or dark as the desktop's setting says.
class ColorSchemeFollower {
public:
    explicit ColorSchemeFollower(GDBusConnection* bus);
    ColorSchemeFollower(const ColorSchemeFollower&) = delete;
    ColorSchemeFollower& operator=(const ColorSchemeFollower&) = delete;
    ~ColorSchemeFollower();

private:
    GDBusConnection* bus_;
    ObjectRef<GCancellable> cancellable_{g_cancellable_new()};
    guint subscription_;
};

} // namespace quorvel

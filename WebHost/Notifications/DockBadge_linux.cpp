#include "WebHost/Notifications/DockBadge_linux.h"

#include "Base/StableHash.h"

namespace quorvel {

DockBadge::DockBadge(GDBusConnection* bus, const std::string& desktopId)
    : bus_(bus),
      uri_("application://" + desktopId),
      path_("/com/canonical/unity/launcherentry/" + stableHash(desktopId)),
      watch_(g_bus_watch_name_on_connection(bus, "com.canonical.Unity",
                                            G_BUS_NAME_WATCHER_FLAGS_NONE, dockAppeared, nullptr,
                                            this, nullptr)) {}

DockBadge::~DockBadge() {
    g_bus_unwatch_name(watch_);
    count_.reset();
    progress_.reset();
    if (hasSent_) {
        send();
        g_dbus_connection_flush_sync(bus_, nullptr, nullptr);
    }
}

// A dock that starts later knows nothing yet.
void DockBadge::dockAppeared(GDBusConnection* /*bus*/, const char* /*name*/, const char* /*owner*/,
                             gpointer self) {
    const auto& badge = *static_cast<DockBadge*>(self);
    if (badge.count_ || badge.progress_) {
        badge.send();
    }
}

void DockBadge::setCount(std::optional<std::int64_t> count) {
    if (count == count_) {
        return;
    }
    const bool isUrgent = !count_ && count && urgency_.admits(FloodClock::now());
    count_ = count;
    hasSent_ = true;
    send(isUrgent);
}

void DockBadge::setProgress(std::optional<double> progress) {
    if (progress == progress_) {
        return;
    }
    progress_ = progress;
    hasSent_ = true;
    send();
}

void DockBadge::send(bool isUrgent) const {
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&properties, "{sv}", "count", g_variant_new_int64(count_.value_or(0)));
    g_variant_builder_add(&properties, "{sv}", "count-visible",
                          g_variant_new_boolean(count_ ? TRUE : FALSE));
    g_variant_builder_add(&properties, "{sv}", "progress",
                          g_variant_new_double(progress_.value_or(0)));
    g_variant_builder_add(&properties, "{sv}", "progress-visible",
                          g_variant_new_boolean(progress_ ? TRUE : FALSE));
    g_variant_builder_add(&properties, "{sv}", "urgent",
                          g_variant_new_boolean(isUrgent ? TRUE : FALSE));
    g_dbus_connection_emit_signal(bus_, nullptr, path_.c_str(), "com.canonical.Unity.LauncherEntry",
                                  "Update", g_variant_new("(sa{sv})", uri_.c_str(), &properties),
                                  nullptr);
}

} // namespace quorvel

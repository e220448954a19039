#pragma once

#include "WebHost/Pages/FloodCaps.h"

#include <gio/gio.h>

#include <cstdint>
#include <optional>
#include <string>

namespace quorvel {

/// The count and the progress on the clone's icon in docks. They last as long as the sender, and
/// are taken back with this object.
class DockBadge {
public:
    /// `desktopId` is the file name of the clone's menu entry.
    DockBadge(GDBusConnection* bus, const std::string& desktopId);
    DockBadge(const DockBadge&) = delete;
    DockBadge& operator=(const DockBadge&) = delete;
    ~DockBadge();

    /// Shows a count; std::nullopt for none.
    void setCount(std::optional<std::int64_t> count);
    /// Shows a progress from 0 to 1; std::nullopt for none.
    void setProgress(std::optional<double> progress);

private:
    void send(bool isUrgent = false) const;
    static void dockAppeared(GDBusConnection* bus, const char* name, const char* owner,
                             gpointer self);

    GDBusConnection* bus_;
    std::string uri_;
    std::string path_;
    std::optional<std::int64_t> count_{};
    std::optional<double> progress_{};
    RateCap urgency_ = urgencyCap();
    bool hasSent_ = false;
    guint watch_;
};

} // namespace quorvel

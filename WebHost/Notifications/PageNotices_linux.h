#pragma once

#include "WebHost/GtkTypes_linux.h"
#include "WebHost/Pages/FloodCaps.h"

#include <webkit/webkit.h>

#include <functional>
#include <map>
#include <string>

namespace quorvel {

/// Shows the notifications of pages on the desktop, under the clone's name and icon.
class PageNotices {
public:
    struct Sender {
        std::string name{};      ///< the clone's
        std::string desktopId{}; ///< its menu entry's file name
        std::string icon{};      ///< the entry's
    };

    /// `clicked` is called with the token by which the window may come to the front, or none.
    PageNotices(GDBusConnection* bus, Sender sender,
                std::function<void(const std::string& token)> clicked);
    PageNotices(const PageNotices&) = delete;
    PageNotices& operator=(const PageNotices&) = delete;
    ~PageNotices();

    /// Shows the notification, unless the page has shown too many.
    void show(WebKitNotification* notification);

private:
    static void replied(GObject* source, GAsyncResult* result, gpointer data);
    static void capabilitiesKnown(GObject* source, GAsyncResult* result, gpointer self);
    static void signalled(GDBusConnection* bus, const char* sender, const char* path,
                          const char* interface, const char* signal, GVariant* values,
                          gpointer self);
    static void closedByPage(WebKitNotification* notification, gpointer self);

    void call(const char* method, GVariant* arguments, const char* reply, GAsyncReadyCallback done,
              gpointer data);
    [[nodiscard]] GVariant* messageFor(WebKitNotification* notification) const;

    GDBusConnection* bus_;
    Sender sender_;
    std::function<void(const std::string&)> clicked_;
    ObjectRef<GCancellable> cancellable_{g_cancellable_new()};
    RateCap cap_ = notificationCap();
    bool showsMarkup_ = true; ///< until the desktop says otherwise
    std::string token_{};     ///< of the click that is reported next
    std::map<guint32, ObjectRef<WebKitNotification>> shown_{};
    guint subscription_;
};

} // namespace quorvel

#pragma once

#include "WebHost/GtkTypes_linux.h"

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <functional>
#include <string>

namespace quorvel {

/// The data that sites have stored in a clone: shown by site, to be cleared by site or all at once.
class SiteDataList {
public:
    /// `cleared` is called when data was removed.
    SiteDataList(WebKitNetworkSession* session, std::string cloneName,
                 std::function<void()> cleared);
    SiteDataList(const SiteDataList&) = delete;
    SiteDataList& operator=(const SiteDataList&) = delete;
    ~SiteDataList();

    [[nodiscard]] GtkWidget* widget() const { return section_; }
    /// Lists the data again.
    void refresh();

private:
    static void found(GObject* manager, GAsyncResult* result, gpointer self);
    static void removed(GObject* manager, GAsyncResult* result, gpointer self);
    static void allCleared(GObject* manager, GAsyncResult* result, gpointer self);

    void remove(WebKitWebsiteData* data);
    void confirm();
    void report(bool isDone, GError* error);

    WebKitWebsiteDataManager* manager_;
    std::string name_;
    std::function<void()> cleared_;
    ObjectRef<GCancellable> cancellable_{g_cancellable_new()};
    GtkWidget* section_;
    GtkWidget* list_;
    GtkWidget* state_;
};

} // namespace quorvel

#pragma once

#include "WebHost/FloodCaps.h"

#include <gtk/gtk.h>
#include <webkit/webkit.h>

namespace quorvel {

/// Shows the dialogs that a page's scripts open: as text, with the page's host, and not without
/// end.
class PageDialogs {
public:
    PageDialogs(WebKitWebView* view, GtkWindow* window);
    PageDialogs(const PageDialogs&) = delete;
    PageDialogs& operator=(const PageDialogs&) = delete;
    ~PageDialogs();

    /// Another page is loaded.
    void reset() { cap_.reset(); }

private:
    static gboolean opened(WebKitWebView* view, WebKitScriptDialog* dialog, gpointer self);
    void show(WebKitScriptDialog* dialog);

    WebKitWebView* view_;
    GtkWindow* window_;
    DialogCap cap_{};
};

} // namespace quorvel

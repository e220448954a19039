#pragma once

#include "WebHost/Pages/FloodCaps.h"
#include "WebHost/Pages/ShownAddress.h"

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <functional>

namespace quorvel {

/// Shows the dialogs that a page's scripts open: as plain text, with the page's host, and only so
/// often.
class PageDialogs {
public:
    struct Callbacks {
        std::function<void()> shown{};        ///< a dialog was shown
        std::function<void()> leavingAsked{}; ///< the page asks whether to leave it
        std::function<void(bool leaves)> leavingAnswered{};
    };

    PageDialogs(WebKitWebView* view, GtkWindow* window, const ShownAddress& shown,
                Callbacks callbacks);
    PageDialogs(const PageDialogs&) = delete;
    PageDialogs& operator=(const PageDialogs&) = delete;
    ~PageDialogs();

    /// Allows dialogs to be shown again.
    void reset() { cap_.reset(); }

private:
    static gboolean opened(WebKitWebView* view, WebKitScriptDialog* dialog, gpointer self);
    void show(WebKitScriptDialog* dialog);

    WebKitWebView* view_;
    GtkWindow* window_;
    const ShownAddress& shown_;
    Callbacks callbacks_;
    DialogCap cap_{};
};

} // namespace quorvel

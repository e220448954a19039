#pragma once

#include <webkit/webkit.h>

#include <functional>
#include <string>

namespace quorvel {

/// The context menu of a page: those of the engine's items that do no harm, and one for links.
class PageMenu {
public:
    /// `openOutside` opens an address of the web outside of the clone.
    PageMenu(WebKitWebView* view, std::function<void(const std::string& address)> openOutside);
    PageMenu(const PageMenu&) = delete;
    PageMenu& operator=(const PageMenu&) = delete;
    ~PageMenu();

private:
    static gboolean opened(WebKitWebView* view, WebKitContextMenu* menu,
                           WebKitHitTestResult* target, gpointer self);

    void addLink(WebKitContextMenu* menu, const std::string& address);

    WebKitWebView* view_;
    std::function<void(const std::string&)> openOutside_;
};

} // namespace quorvel

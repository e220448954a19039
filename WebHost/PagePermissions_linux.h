#pragma once

#include "WebHost/PermissionStore.h"
#include "WebHost/QuestionBar_linux.h"

#include <webkit/webkit.h>

#include <functional>
#include <set>
#include <string>

namespace quorvel {

/// Answers what a page asks for: as the user answered before, or by asking. A question that was
/// closed is not asked again before the page is loaded again.
class PagePermissions {
public:
    using Ask = std::function<void(HostQuestion)>;

    /// Connects to the view's requests.
    PagePermissions(WebKitWebView* view, PermissionStore& store, Ask ask);
    PagePermissions(const PagePermissions&) = delete;
    PagePermissions& operator=(const PagePermissions&) = delete;
    ~PagePermissions();

    /// Another page is loaded.
    void reset() { closed_.clear(); }

    /// Has `done` called with the answer to a question about an origin, now or later.
    void decide(const std::string& origin, const std::string& kind, const std::string& text,
                std::function<void(bool)> done);

    /// Tells the engine which origins may show notifications.
    static void initialize(WebKitWebContext* context, const PermissionStore& store);

private:
    static gboolean requested(WebKitWebView* view, WebKitPermissionRequest* request, gpointer self);
    static gboolean queried(WebKitWebView* view, WebKitPermissionStateQuery* query, gpointer self);

    WebKitWebView* view_;
    PermissionStore& store_;
    Ask ask_;
    std::set<std::string> closed_{};
};

/// The kind under which the answers about notifications are kept.
inline constexpr const char* notificationKind = "notifications";

} // namespace quorvel

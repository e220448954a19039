#pragma once

#include "WebHost/Pages/ShownAddress.h"
#include "WebHost/Questions/PermissionQuestions.h"

#include <webkit/webkit.h>

namespace quorvel {

/// Answers a view's requests for permissions.
class PagePermissions {
public:
    PagePermissions(WebKitWebView* view, const ShownAddress& shown, PermissionQuestions& questions);
    PagePermissions(const PagePermissions&) = delete;
    PagePermissions& operator=(const PagePermissions&) = delete;
    ~PagePermissions();

    /// Tells the engine which origins may show notifications.
    static void initialize(WebKitWebContext* context, const PermissionStore& store);

private:
    static gboolean requested(WebKitWebView* view, WebKitPermissionRequest* request, gpointer self);
    static gboolean queried(WebKitWebView* view, WebKitPermissionStateQuery* query, gpointer self);

    WebKitWebView* view_;
    const ShownAddress& shown_;
    PermissionQuestions& questions_;
};

/// The kind under which the answers about notifications are kept.
inline constexpr const char* notificationKind = "notifications";

} // namespace quorvel

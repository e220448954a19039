#include "WebHost/Questions/PagePermissions_linux.h"

#include "WebHost/GtkTypes_linux.h"
#include "WebHost/Links/WebAddress.h"

namespace quorvel {
namespace {

std::string mediaKind(WebKitUserMediaPermissionRequest* request) {
    if (webkit_user_media_permission_is_for_display_device(request) == TRUE) {
        return "screen";
    }
    const bool sound = webkit_user_media_permission_is_for_audio_device(request) == TRUE;
    const bool picture = webkit_user_media_permission_is_for_video_device(request) == TRUE;
    return sound && picture ? "camera+microphone" : sound ? "microphone" : "camera";
}

// The kind of what is asked for; empty if it is refused.
std::string kindOf(WebKitPermissionRequest* request) {
    if (WEBKIT_IS_NOTIFICATION_PERMISSION_REQUEST(request)) {
        return notificationKind;
    }
    if (WEBKIT_IS_GEOLOCATION_PERMISSION_REQUEST(request)) {
        return "location";
    }
    if (WEBKIT_IS_USER_MEDIA_PERMISSION_REQUEST(request)) {
        return mediaKind(WEBKIT_USER_MEDIA_PERMISSION_REQUEST(request));
    }
    if (WEBKIT_IS_CLIPBOARD_PERMISSION_REQUEST(request)) {
        return "clipboard";
    }
    if (WEBKIT_IS_POINTER_LOCK_PERMISSION_REQUEST(request)) {
        return "pointer-lock";
    }
    if (WEBKIT_IS_MEDIA_KEY_SYSTEM_PERMISSION_REQUEST(request)) {
        return "protected-media";
    }
    if (WEBKIT_IS_WEBSITE_DATA_ACCESS_PERMISSION_REQUEST(request)) {
        return dataPermissionKind(
            textOf(webkit_website_data_access_permission_request_get_requesting_domain(
                WEBKIT_WEBSITE_DATA_ACCESS_PERMISSION_REQUEST(request))));
    }
    return {};
}

// Returns the kind that pages query by this name.
std::string kindOfQuery(const std::string& name) {
    return name == "geolocation" ? "location" : name == "clipboard-read" ? "clipboard" : name;
}

} // namespace

PagePermissions::PagePermissions(WebKitWebView* view, const ShownAddress& shown,
                                 PermissionQuestions& questions)
    : view_(view),
      shown_(shown),
      questions_(questions) {
    onSignal(view, "permission-request", requested, this);
    onSignal(view, "query-permission-state", queried, this);
}

PagePermissions::~PagePermissions() {
    g_signal_handlers_disconnect_by_data(view_, this);
}

gboolean PagePermissions::requested(WebKitWebView* /*view*/, WebKitPermissionRequest* request,
                                    gpointer self) {
    const auto& permissions = *static_cast<PagePermissions*>(self);
    const std::string address = permissions.shown_.text();
    const std::string origin = originOf(address);
    const std::string kind = kindOf(request);
    if (kind.empty() || origin.empty()) {
        webkit_permission_request_deny(request);
        return TRUE;
    }
    const std::shared_ptr<WebKitPermissionRequest> kept = keep(request);
    permissions.questions_.decide(origin, kind,
                                  hostOf(address) + " wants to " + permissionWords(kind) + ".",
                                  [kept](bool isAllowed) {
                                      if (isAllowed) {
                                          webkit_permission_request_allow(kept.get());
                                      } else {
                                          webkit_permission_request_deny(kept.get());
                                      }
                                  });
    return TRUE;
}

gboolean PagePermissions::queried(WebKitWebView* /*view*/, WebKitPermissionStateQuery* query,
                                  gpointer self) {
    const std::string origin = originOf(takeText(webkit_security_origin_to_string(
        webkit_permission_state_query_get_security_origin(query))));
    const std::string name = textOf(webkit_permission_state_query_get_name(query));
    const auto known =
        static_cast<PagePermissions*>(self)->questions_.store().answer(origin, kindOfQuery(name));
    // Keeping the screen on harms nobody, and the window shows who does it.
    const bool isHarmless = name == "screen-wake-lock";
    webkit_permission_state_query_finish(query, known.value_or(isHarmless)
                                                    ? WEBKIT_PERMISSION_STATE_GRANTED
                                                : known ? WEBKIT_PERMISSION_STATE_DENIED
                                                        : WEBKIT_PERMISSION_STATE_PROMPT);
    return TRUE;
}

void PagePermissions::initialize(WebKitWebContext* context, const PermissionStore& store) {
    GList* allowed = nullptr;
    GList* refused = nullptr;
    for (const PermissionStore::Answer& answer : store.list()) {
        if (answer.kind == notificationKind) {
            GList*& list = answer.isAllowed ? allowed : refused;
            list = g_list_prepend(list, webkit_security_origin_new_for_uri(answer.origin.c_str()));
        }
    }
    webkit_web_context_initialize_notification_permissions(context, allowed, refused);
    for (GList* list : {allowed, refused}) {
        g_list_free_full(list, [](gpointer origin) {
            webkit_security_origin_unref(static_cast<WebKitSecurityOrigin*>(origin));
        });
    }
}

} // namespace quorvel

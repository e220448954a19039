#include "WebHost/Pages/HostPage_linux.h"

#include "Base/AsciiCase.h"
#include "WebHost/GtkTypes_linux.h"
#include "WebHost/Links/WebAddress.h"
#include "WebHost/Notifications/BadgeScript.h"
#include "WebHost/Pages/StatusPages.h"

#include <libsoup/soup.h>

namespace quorvel {
namespace {

HostPage& of(gpointer self) {
    return *static_cast<HostPage*>(self);
}

std::string addressOf(WebKitNavigationAction* action) {
    std::string address =
        textOf(webkit_uri_request_get_uri(webkit_navigation_action_get_request(action)));
    return address.empty() ? "about:blank" : address;
}

bool isAttachment(WebKitURIResponse* response) {
    SoupMessageHeaders* const headers = webkit_uri_response_get_http_headers(response);
    char* disposition = nullptr;
    GHashTable* parameters = nullptr;
    if (headers == nullptr ||
        soup_message_headers_get_content_disposition(headers, &disposition, &parameters) == FALSE) {
        return false;
    }
    g_hash_table_unref(parameters);
    return asciiLower(takeText(disposition)) == "attachment";
}

} // namespace

HostPage::HostPage(WebKitWebView* view, const PageServices& services, Callbacks callbacks,
                   const WindowState& state)
    : view_(view),
      services_(services),
      callbacks_(std::move(callbacks)),
      life_(g_cancellable_new()),
      window_(view,
              {.home = callbacks_.home,
               .settings = callbacks_.settings,
               .quit = services.quit,
               .closeRequested =
                   [this] {
                       if (isPopup()) {
                           close();
                       } else {
                           services_.quit();
                       }
                   }},
              state, services.iconName),
      dialogs_(view, window_.widget(), shown_,
               {[this] { visit_.used(window_.gestures()); }, [this] { closeGuard_.asksUser(); },
                [this](bool leaves) { leavingAnswered(leaves); }}),
      questions_(
          *services.permissions,
          [this](HostQuestion question) { return window_.ask(std::move(question)); },
          [this] { visit_.used(window_.gestures()); }),
      permissions_(view, shown_, questions_),
      certificates_(view, window_, *services.certificates,
                    [this](const std::string& html, const std::string& address) {
                        showStatus(html, address);
                    }),
      passwords_(view, window_.widget(), shown_, [this] { visit_.used(window_.gestures()); }),
      menu_(view, [this](const std::string& address) { openOutside(address); }) {
    connect();
}

HostPage::~HostPage() {
    for (const guint timer : {repetition_, hint_}) {
        if (timer != 0) {
            g_source_remove(timer);
        }
    }
    g_cancellable_cancel(life_.get());
    g_signal_handlers_disconnect_by_data(view_, this);
}

void HostPage::connect() {
    onSignal(view_, "decide-policy", policyWanted, this);
    onSignal(view_, "create", created, this);
    onSignal(view_, "load-changed", loadChanged, this);
    onSignal(view_, "load-failed", loadFailed, this);
    onSignal(view_, "web-process-terminated", crashed, this);
    onSignal(
        view_, "notify::title",
        [](WebKitWebView*, GParamSpec*, gpointer self) { of(self).callbacks_.titleChanged(); },
        this);
    onSignal(
        view_, "notify::uri",
        [](WebKitWebView* view, GParamSpec*, gpointer self) {
            HostPage& page = of(self);
            page.shown_.reported(textOf(webkit_web_view_get_uri(view)));
            page.updateLocation();
            page.callbacks_.titleChanged();
        },
        this);
    onSignal(
        view_, "show-notification",
        [](WebKitWebView*, WebKitNotification* notification, gpointer self) -> gboolean {
            of(self).notificationWanted(notification);
            return TRUE;
        },
        this);
    onSignal(
        view_, "close", [](WebKitWebView*, gpointer self) { of(self).closedByEngine(); }, this);
}

void HostPage::load(const std::string& address) {
    if (address.empty()) {
        requested_.withdraw();
        webkit_web_view_load_html(view_, noAddressPage(services_.name).c_str(), nullptr);
    } else {
        const ObjectRef<WebKitURIRequest> request(webkit_uri_request_new(address.c_str()));
        // As the engine spells it.
        requested_.requested(textOf(webkit_uri_request_get_uri(request.get())));
        webkit_web_view_load_request(view_, request.get());
    }
}

std::string HostPage::title() const {
    return textOf(webkit_web_view_get_title(view_));
}

void HostPage::close() {
    if (closeGuard_.closesAtOnce()) {
        callbacks_.closed();
    } else {
        webkit_web_view_try_close(view_);
    }
}

void HostPage::closedByEngine() {
    switch (closeGuard_.endingByEngine()) {
    case CloseGuard::Ending::close:
        callbacks_.closed();
        break;
    case CloseGuard::Ending::askAgain:
        afterReaction([this] {
            if (closeGuard_.closesAfterAll()) {
                callbacks_.closed();
            }
        });
        hintIfItHangs();
        break;
    case CloseGuard::Ending::stay:
        break;
    }
}

void HostPage::hintIfItHangs() {
    constexpr guint seconds = 2;
    if (hint_ == 0) {
        hint_ = g_timeout_add_seconds(
            seconds,
            [](gpointer self) -> gboolean {
                HostPage& page = of(self);
                page.hint_ = 0;
                if (page.closeGuard_.closesAfterAll()) {
                    page.window_.showMessage(
                        "This page does not react. Close it again to leave it.");
                }
                return G_SOURCE_REMOVE;
            },
            this);
    }
}

void HostPage::leavingAnswered(bool leaves) {
    if (closeGuard_.answered(leaves)) {
        afterReaction([this] { callbacks_.closed(); });
    } else {
        afterReaction([this] { closeGuard_.settled(); });
    }
}

void HostPage::afterReaction(std::function<void()> act) {
    auto kept = std::make_unique<std::function<void()>>(std::move(act));
    webkit_web_view_evaluate_javascript(
        view_, "0", -1, badgeWorld, nullptr, life_.get(),
        [](GObject* view, GAsyncResult* result, gpointer data) {
            const std::unique_ptr<std::function<void()>> then(
                static_cast<std::function<void()>*>(data));
            GError* error = nullptr;
            JSCValue* value =
                webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(view), result, &error);
            const bool isOver = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED) == TRUE;
            g_clear_object(&value);
            g_clear_error(&error);
            if (!isOver) {
                (*then)();
            }
        },
        kept.release());
}

// The engine remembers permissions as long as it runs, but the user may have taken one back.
void HostPage::notificationWanted(WebKitNotification* notification) {
    if (services_.permissions->answer(originOf(address()), notificationKind) == true) {
        services_.notify(notification);
    } else {
        webkit_notification_close(notification);
    }
}

void HostPage::permissionsTaken(const std::vector<PermissionStore::Answer>& taken) {
    questions_.reset();
    if (isHeldUntilReload(taken, originOf(address()))) {
        for (const auto set : {webkit_web_view_set_camera_capture_state,
                               webkit_web_view_set_microphone_capture_state,
                               webkit_web_view_set_display_capture_state}) {
            set(view_, WEBKIT_MEDIA_CAPTURE_STATE_NONE);
        }
        webkit_web_view_reload(view_);
    }
}

void HostPage::openOther(const std::string& address) {
    questions_.decideLink(this->address(), address, [this, address] { openOutside(address); });
}

void HostPage::openOutside(const std::string& address) {
    if (!services_.links->open(address)) {
        window_.showMessage("No program opens this link");
    }
}

void HostPage::updateLocation() {
    window_.updateLocation(address(),
                           services_.certificates->isAcceptedByEngine(hostOf(address())));
}

// Returns whether the engine goes on with it.
bool HostPage::routes(WebKitNavigationAction* action, bool isNewWindow) {
    const std::string address = addressOf(action);
    const bool isGesture = webkit_navigation_action_is_user_gesture(action) == TRUE;
    const LinkRequest request{.address = address,
                              .page = this->address(),
                              .home = services_.homeAddress,
                              .isGesture = isGesture,
                              .isLinkClick = webkit_navigation_action_get_navigation_type(action) ==
                                             WEBKIT_NAVIGATION_TYPE_LINK_CLICKED,
                              .isRedirect = webkit_navigation_action_is_redirect(action) == TRUE,
                              // The engine doesn't say which frame it is; what loads by itself may
                              // be any, and what is clicked counts as the page's own.
                              .isMainFrame = isGesture || isNewWindow || isWebAddress(address),
                              .isNewWindow = isNewWindow,
                              .isPopup = isPopup(),
                              .staysInside = services_.keepsLinks,
                              .rule = ruleFor(services_.settings->settings(), hostOf(address))};
    return follow(
        routeOf(request, services_.siteOf), [&] { openOutside(address); },
        [&] { openOther(address); });
}

bool HostPage::takesResponse(WebKitResponsePolicyDecision* decision) const {
    const bool isPage =
        webkit_response_policy_decision_is_main_frame_main_resource(decision) == TRUE;
    const bool isShown = webkit_response_policy_decision_is_mime_type_supported(decision) == TRUE;
    return !isPage ||
           (isShown && !isAttachment(webkit_response_policy_decision_get_response(decision)));
}

gboolean HostPage::policyWanted(WebKitWebView* /*view*/, WebKitPolicyDecision* decision,
                                WebKitPolicyDecisionType type, gpointer self) {
    HostPage& page = of(self);
    if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
        if (page.takesResponse(WEBKIT_RESPONSE_POLICY_DECISION(decision))) {
            return FALSE;
        }
        webkit_policy_decision_download(decision);
        return TRUE;
    }
    WebKitNavigationAction* const action = webkit_navigation_policy_decision_get_navigation_action(
        WEBKIT_NAVIGATION_POLICY_DECISION(decision));
    const bool isNewWindow = type == WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION;
    if (!isNewWindow) {
        page.requested_.decided(addressOf(action),
                                webkit_navigation_action_is_user_gesture(action) == TRUE);
    }
    if (page.routes(action, isNewWindow)) {
        return FALSE;
    }
    webkit_policy_decision_ignore(decision);
    return TRUE;
}

WebKitWebView* HostPage::created(WebKitWebView* /*view*/, WebKitNavigationAction* action,
                                 gpointer self) {
    HostPage& page = of(self);
    // Links have been routed by the decision about their policy; scripts come here directly.
    const bool isAllowed =
        webkit_navigation_action_is_user_gesture(action) == TRUE && page.routes(action, true);
    return isAllowed ? page.services_.openPopup(page) : nullptr;
}

void HostPage::showStatus(const std::string& html, const std::string& address) {
    requested_.failed(address);
    webkit_web_view_load_alternate_html(view_, html.c_str(), address.c_str(), nullptr);
}

gboolean HostPage::loadFailed(WebKitWebView* /*view*/, WebKitLoadEvent /*event*/, char* address,
                              GError* error, gpointer self) {
    of(self).awaited_.clear();
    of(self).requested_.failed(textOf(address));
    // A download interrupts its page, and a link that is opened elsewhere does, too.
    if (error->domain == WEBKIT_POLICY_ERROR ||
        g_error_matches(error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED) == TRUE) {
        return FALSE;
    }
    if (of(self).loadsAgain(textOf(address), *error)) {
        return TRUE;
    }
    of(self).showStatus(offlinePage(textOf(address), textOf(error->message) + "."),
                        textOf(address));
    return TRUE;
}

// The engine sometimes cancels a connection whose certificate it refuses, and then does not say
// that it was the certificate. When asked again, it does.
bool HostPage::loadsAgain(const std::string& address, const GError& error) {
    if (g_error_matches(&error, G_IO_ERROR, G_IO_ERROR_CANCELLED) == FALSE ||
        !address.starts_with("https:") || std::exchange(cancelled_, address) == address) {
        return false;
    }
    load(address);
    return true;
}

void HostPage::crashed(WebKitWebView* view, WebKitWebProcessTerminationReason /*reason*/,
                       gpointer self) {
    HostPage& page = of(self);
    if (page.reloads_.admits(FloodClock::now())) {
        // A reload would show the page before the one that is still on its way.
        const std::string next =
            page.requested_.isWaiting() ? page.requested_.address() : page.awaited_;
        if (next.empty()) {
            webkit_web_view_reload(view);
        } else {
            page.load(next);
        }
    } else {
        page.showStatus(crashPage(page.address()), page.address());
    }
}

void HostPage::committed() {
    // While a load is requested, the engine already reports its address as the view's.
    WebKitWebResource* const resource = webkit_web_view_get_main_resource(view_);
    shown_.committed(textOf(requested_.isWaiting() && resource != nullptr
                                ? webkit_web_resource_get_uri(resource)
                                : webkit_web_view_get_uri(view_)));
    repeatIfDropped();
    awaited_.clear();
    cancelled_.clear();
    closeGuard_.replaced();
    if (visit_.begins(hostOf(address()), window_.gestures())) {
        dialogs_.reset();
        questions_.reset();
        passwords_.reset();
    }
    if (!isPopup()) {
        webkit_web_view_evaluate_javascript(view_, badgeMainScript, -1, badgeWorld, nullptr,
                                            nullptr, nullptr, nullptr);
    }
    callbacks_.titleChanged();
}

// Asks for a page once more if the engine does not begin with it, now that another one is there.
void HostPage::repeatIfDropped() {
    if (!requested_.isWaiting() || repetition_ != 0) {
        return;
    }
    repetition_ = g_timeout_add(
        RequestedLoad::longestDelay,
        [](gpointer self) -> gboolean {
            HostPage& page = of(self);
            page.repetition_ = 0;
            if (page.requested_.isToBeRepeated()) {
                page.load(std::string(page.requested_.address()));
            }
            return G_SOURCE_REMOVE;
        },
        this);
}

void HostPage::loadChanged(WebKitWebView* view, WebKitLoadEvent event, gpointer self) {
    HostPage& page = of(self);
    if (event == WEBKIT_LOAD_STARTED || event == WEBKIT_LOAD_REDIRECTED) {
        page.awaited_ = textOf(webkit_web_view_get_uri(view));
        if (event == WEBKIT_LOAD_STARTED) {
            page.requested_.started();
            page.certificates_.loadStarted();
        }
    } else if (event == WEBKIT_LOAD_COMMITTED) {
        page.committed();
    } else if (event == WEBKIT_LOAD_FINISHED) {
        page.services_.loaded();
    }
    page.updateLocation();
}

} // namespace quorvel

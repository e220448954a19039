#include "WebHost/Notifications/PageNotices_linux.h"

#include "Base/TerminalText.h"
#include "WebHost/Pages/PageText.h"
#include "WebHost/Pages/StatusPages.h"

#include <algorithm>

namespace quorvel {
namespace {

constexpr const char* busName = "org.freedesktop.Notifications";
constexpr const char* objectPath = "/org/freedesktop/Notifications";
constexpr std::size_t longestSummary = 120;
constexpr std::size_t longestBody = 500;

// A call whose answer is awaited.
struct Shown {
    PageNotices* notices;
    ObjectRef<WebKitNotification> notification;
};

} // namespace

PageNotices::PageNotices(GDBusConnection* bus, Sender sender,
                         std::function<void(const std::string& token)> clicked)
    : bus_(bus),
      sender_(std::move(sender)),
      clicked_(std::move(clicked)),
      subscription_(g_dbus_connection_signal_subscribe(bus, busName, busName, nullptr, objectPath,
                                                       nullptr, G_DBUS_SIGNAL_FLAGS_NONE, signalled,
                                                       this, nullptr)) {}

PageNotices::~PageNotices() {
    g_cancellable_cancel(cancellable_.get());
    g_dbus_connection_signal_unsubscribe(bus_, subscription_);
    for (const auto& [id, notification] : shown_) {
        g_signal_handlers_disconnect_by_data(notification.get(), this);
    }
}

void PageNotices::call(const char* method, GVariant* arguments, const char* reply,
                       GAsyncReadyCallback done, gpointer data) {
    g_dbus_connection_call(bus_, busName, objectPath, busName, method, arguments,
                           G_VARIANT_TYPE(reply), G_DBUS_CALL_FLAGS_NONE, -1, cancellable_.get(),
                           done, data);
}

void PageNotices::capabilitiesKnown(GObject* source, GAsyncResult* result, gpointer self) {
    GVariant* const answer =
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr);
    if (answer == nullptr) {
        return;
    }
    const char** capabilities = nullptr;
    g_variant_get(answer, "(^a&s)", &capabilities);
    static_cast<PageNotices*>(self)->showsMarkup_ =
        g_strv_contains(capabilities, "body-markup") == TRUE;
    g_free(capabilities);
    g_variant_unref(answer);
}

GVariant* PageNotices::messageFor(WebKitNotification* notification) const {
    const std::string summary =
        withoutUnsafe(textOf(webkit_notification_get_title(notification)), longestSummary);
    const std::string plain =
        pageText(textOf(webkit_notification_get_body(notification)), longestBody);
    const std::string body = showsMarkup_ ? htmlText(plain) : plain;
    GVariantBuilder actions;
    g_variant_builder_init(&actions, G_VARIANT_TYPE("as"));
    g_variant_builder_add(&actions, "s", "default");
    g_variant_builder_add(&actions, "s", "Open");
    GVariantBuilder hints;
    g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
    const std::string entry = sender_.desktopId.substr(0, sender_.desktopId.rfind(".desktop"));
    g_variant_builder_add(&hints, "{sv}", "desktop-entry", g_variant_new_string(entry.c_str()));
    return g_variant_new("(susssasa{sv}i)", sender_.name.c_str(), 0U, sender_.icon.c_str(),
                         (summary + " — " + sender_.name).c_str(), body.c_str(), &actions, &hints,
                         -1);
}

void PageNotices::show(WebKitNotification* notification) {
    if (!cap_.admits(FloodClock::now())) {
        webkit_notification_close(notification);
        return;
    }
    call("GetCapabilities", nullptr, "(as)", capabilitiesKnown, this);
    call("Notify", messageFor(notification), "(u)", replied, new Shown{this, keep(notification)});
}

void PageNotices::replied(GObject* source, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<Shown> shown(static_cast<Shown*>(data));
    GError* error = nullptr;
    GVariant* const answer =
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error);
    if (answer == nullptr) {
        // After a cancellation the notices are gone.
        g_error_free(error);
        return;
    }
    guint32 id = 0;
    g_variant_get(answer, "(u)", &id);
    g_variant_unref(answer);
    onSignal(shown->notification.get(), "closed", closedByPage, shown->notices);
    shown->notices->shown_.insert_or_assign(id, std::move(shown->notification));
}

void PageNotices::closedByPage(WebKitNotification* notification, gpointer self) {
    auto& notices = *static_cast<PageNotices*>(self);
    const auto found =
        std::find_if(notices.shown_.begin(), notices.shown_.end(),
                     [&](const auto& one) { return one.second.get() == notification; });
    if (found != notices.shown_.end()) {
        notices.call("CloseNotification", g_variant_new("(u)", found->first), "()", nullptr,
                     nullptr);
        g_signal_handlers_disconnect_by_data(notification, self);
        notices.shown_.erase(found);
    }
}

void PageNotices::signalled(GDBusConnection* /*bus*/, const char* /*sender*/, const char* /*path*/,
                            const char* /*interface*/, const char* signal, GVariant* values,
                            gpointer self) {
    auto& notices = *static_cast<PageNotices*>(self);
    // All its signals begin with the notification's number.
    if (!g_str_has_prefix(g_variant_get_type_string(values), "(u")) {
        return;
    }
    guint32 id = 0;
    g_variant_get_child(values, 0, "u", &id);
    const auto found = notices.shown_.find(id);
    if (found == notices.shown_.end()) {
        return;
    }
    const std::string name = signal;
    if (name == "ActivationToken" && g_variant_is_of_type(values, G_VARIANT_TYPE("(us)")) == TRUE) {
        const char* token = nullptr;
        g_variant_get_child(values, 1, "&s", &token);
        notices.token_ = textOf(token);
    } else if (name == "ActionInvoked") {
        webkit_notification_clicked(found->second.get());
        notices.clicked_(std::exchange(notices.token_, {}));
    } else if (name == "NotificationClosed") {
        const ObjectRef<WebKitNotification> notification = std::move(found->second);
        notices.shown_.erase(found);
        g_signal_handlers_disconnect_by_data(notification.get(), self);
        webkit_notification_close(notification.get());
    }
}

} // namespace quorvel

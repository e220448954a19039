#include "Platform/statusitem/StatusItem_linux.h"

#include "Base/TerminalText.h"
#include "Platform/entries/MenuEntry.h"
#include "Platform/statusitem/ExportedObject_linux.h"

#include <unistd.h>

#include <array>
#include <utility>

namespace quorvel {
namespace {

constexpr const char* path = "/StatusNotifierItem";
constexpr const char* interface = "org.kde.StatusNotifierItem";
constexpr const char* watcher = "org.kde.StatusNotifierWatcher";

constexpr const char* interfaceText = R"xml(<node><interface name="org.kde.StatusNotifierItem">
  <property name="Category" type="s" access="read"/>
  <property name="Id" type="s" access="read"/>
  <property name="Title" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="WindowId" type="i" access="read"/>
  <property name="IconThemePath" type="s" access="read"/>
  <property name="IconName" type="s" access="read"/>
  <property name="OverlayIconName" type="s" access="read"/>
  <property name="AttentionIconName" type="s" access="read"/>
  <property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
  <property name="ItemIsMenu" type="b" access="read"/>
  <property name="Menu" type="o" access="read"/>
  <property name="XAyatanaLabel" type="s" access="read"/>
  <property name="XAyatanaLabelGuide" type="s" access="read"/>
  <method name="ContextMenu"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
  <method name="Activate"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
  <method name="SecondaryActivate">
    <arg type="i" direction="in"/><arg type="i" direction="in"/>
  </method>
  <method name="Scroll"><arg type="i" direction="in"/><arg type="s" direction="in"/></method>
  <method name="ProvideXdgActivationToken"><arg type="s" direction="in"/></method>
  <signal name="NewTitle"/>
  <signal name="NewToolTip"/>
  <signal name="XAyatanaNewLabel"><arg type="s"/><arg type="s"/></signal>
</interface></node>)xml";

StatusItem& of(gpointer self) {
    return *static_cast<StatusItem*>(self);
}

} // namespace

std::string statusIconName(const std::string& entryIcon, bool isSymbolic) {
    const std::string icon = entryIcon.empty() ? "application-x-executable" : entryIcon;
    return isSymbolic ? symbolicIconName(icon) : icon;
}

StatusItem::StatusItem(GDBusConnection* bus, StatusItemOptions options)
    : bus_(bus),
      options_(std::move(options)),
      name_(std::string(interface) + "-" + std::to_string(::getpid()) + "-1"),
      menu_(bus, {{"Show", [this] { show(); }}, {"Quit", [this] { options_.quit(); }}}) {
    static constexpr GDBusInterfaceVTable handlers{called, property, nullptr, {}};
    registration_ = exportObject(bus, path, interfaceText, handlers, this);
    ownership_ = g_bus_own_name_on_connection(bus, name_.c_str(), G_BUS_NAME_OWNER_FLAGS_NONE,
                                              nameAcquired, nullptr, this, nullptr);
}

StatusItem::~StatusItem() {
    if (watch_ != 0) {
        g_bus_unwatch_name(watch_);
    }
    g_bus_unown_name(ownership_);
    g_dbus_connection_unregister_object(bus_, registration_);
    g_dbus_connection_flush_sync(bus_, nullptr, nullptr);
}

// Not earlier: some trays drop an item whose name they can't find.
void StatusItem::nameAcquired(GDBusConnection* bus, const char* /*name*/, gpointer self) {
    StatusItem& item = of(self);
    if (item.watch_ == 0) {
        item.watch_ = g_bus_watch_name_on_connection(bus, watcher, G_BUS_NAME_WATCHER_FLAGS_NONE,
                                                     trayAppeared, nullptr, self, nullptr);
    }
}

void StatusItem::trayAppeared(GDBusConnection* bus, const char* /*name*/, const char* /*owner*/,
                              gpointer self) {
    g_dbus_connection_call(bus, watcher, "/StatusNotifierWatcher", watcher,
                           "RegisterStatusNotifierItem",
                           g_variant_new("(s)", of(self).name_.c_str()), nullptr,
                           G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr, nullptr);
}

std::string StatusItem::title() const {
    const std::string title = withoutUnsafe(options_.title);
    return label_.empty() ? title : title + " (" + label_ + ")";
}

void StatusItem::setLabel(const std::string& label) {
    if (label == label_) {
        return;
    }
    label_ = label;
    emit("NewTitle", nullptr);
    emit("NewToolTip", nullptr);
    emit("XAyatanaNewLabel", g_variant_new("(ss)", label_.c_str(), ""));
}

void StatusItem::emit(const char* signal, GVariant* arguments) const {
    g_dbus_connection_emit_signal(bus_, nullptr, path, interface, signal, arguments, nullptr);
}

void StatusItem::show() {
    options_.show(std::exchange(token_, {}));
}

void StatusItem::called(GDBusConnection* /*bus*/, const char* /*sender*/, const char* /*path*/,
                        const char* /*interface*/, const char* method, GVariant* arguments,
                        GDBusMethodInvocation* invocation, gpointer self) {
    StatusItem& item = of(self);
    const std::string asked = method;
    if (asked == "Activate" || asked == "SecondaryActivate") {
        item.show();
    } else if (asked == "ProvideXdgActivationToken") {
        const char* token = nullptr;
        g_variant_get(arguments, "(&s)", &token);
        item.token_ = token;
    }
    // A tray draws the menu itself, and nothing scrolls.
    g_dbus_method_invocation_return_value(invocation, nullptr);
}

GVariant* StatusItem::property(GDBusConnection* /*bus*/, const char* /*sender*/,
                               const char* /*path*/, const char* /*interface*/, const char* name,
                               GError** /*error*/, gpointer self) {
    const StatusItem& item = of(self);
    const std::string asked = name;
    if (asked == "WindowId") {
        return g_variant_new_int32(0);
    }
    if (asked == "ItemIsMenu") {
        return g_variant_new_boolean(FALSE);
    }
    if (asked == "Menu") {
        return g_variant_new_object_path(StatusMenu::path);
    }
    if (asked == "ToolTip") {
        return g_variant_new("(sa(iiay)ss)", "", nullptr, item.title().c_str(), "");
    }
    const std::array<std::pair<const char*, std::string>, 6> texts{{
        {"Category", "ApplicationStatus"},
        {"Id", withoutUnsafe(item.options_.id)},
        {"Title", item.title()},
        {"Status", "Active"},
        {"IconName", item.options_.icon},
        {"XAyatanaLabel", item.label_},
    }};
    for (const auto& [known, text] : texts) {
        if (asked == known) {
            return g_variant_new_string(text.c_str());
        }
    }
    return g_variant_new_string("");
}

} // namespace quorvel

#pragma once

#include "tests/support/Waiting.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace quorvel::testing {

/// The desktop's side of status items, on a connection of its own: a watcher that items register
/// with, and what a tray asks them.
class Tray {
public:
    Tray() {
        bus_ = g_dbus_connection_new_for_address_sync(
            std::getenv("DBUS_SESSION_BUS_ADDRESS"), // NOLINT(concurrency-mt-unsafe)
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(
            R"(<node><interface name="org.kde.StatusNotifierWatcher">
               <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
               </interface></node>)",
            nullptr);
        static constexpr GDBusInterfaceVTable handlers{registered, nullptr, nullptr, {}};
        g_dbus_connection_register_object(bus_, "/StatusNotifierWatcher", *node->interfaces,
                                          &handlers, this, nullptr, nullptr);
        g_dbus_node_info_unref(node);
        const std::string reply = ask("org.freedesktop.DBus", "/", "org.freedesktop.DBus",
                                      "RequestName", "('org.kde.StatusNotifierWatcher', uint32 4)")
                                      .value_or("");
        EXPECT_EQ(reply, "(1,)") << "there is another tray";
    }
    Tray(const Tray&) = delete;
    Tray& operator=(const Tray&) = delete;
    ~Tray() {
        g_dbus_connection_close_sync(bus_, nullptr, nullptr);
        g_object_unref(bus_);
    }

    // Waits for an item, and returns its name on the bus; empty if none registers.
    std::string item(std::chrono::milliseconds deadline = std::chrono::seconds(20)) {
        (void)waitUntil([&] { return isDispatched() && !items_.empty(); }, deadline);
        return items_.empty() ? "" : items_.front();
    }

    // Returns how many items were registered before their name had an owner.
    [[nodiscard]] int tooEarly() const { return tooEarly_; }

    [[nodiscard]] bool has(const std::string& name) const {
        return ask("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "NameHasOwner",
                   "('" + name + "',)") == "(true,)";
    }

    // The value of an item's property as text; empty if it has none.
    [[nodiscard]] std::string property(const std::string& item, const std::string& name) const {
        return ask(item, "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                   "('org.kde.StatusNotifierItem', '" + name + "')")
            .value_or("");
    }

    // The replies as text; absent for an error.
    [[nodiscard]] std::optional<std::string>
    call(const std::string& item, const std::string& method, const std::string& arguments) const {
        return ask(item, "/StatusNotifierItem", "org.kde.StatusNotifierItem", method, arguments);
    }
    [[nodiscard]] std::optional<std::string> callMenu(const std::string& item,
                                                      const std::string& method,
                                                      const std::string& arguments) const {
        return ask(item, "/StatusNotifierItem/Menu", "com.canonical.dbusmenu", method, arguments);
    }

private:
    static bool isDispatched() {
        while (g_main_context_iteration(nullptr, FALSE) == TRUE) {
        }
        return true;
    }

    static void registered(GDBusConnection* /*bus*/, const char* /*sender*/, const char* /*path*/,
                           const char* /*interface*/, const char* /*method*/, GVariant* arguments,
                           GDBusMethodInvocation* invocation, gpointer self) {
        const char* name = nullptr;
        g_variant_get(arguments, "(&s)", &name);
        auto& tray = *static_cast<Tray*>(self);
        tray.tooEarly_ += tray.has(name) ? 0 : 1;
        tray.items_.emplace_back(name);
        g_dbus_method_invocation_return_value(invocation, nullptr);
    }

    [[nodiscard]] std::optional<std::string> ask(const std::string& name, const char* path,
                                                 const char* interface, const std::string& method,
                                                 const std::string& arguments) const {
        constexpr int patience = 10000; // ms
        GVariant* const given =
            g_variant_parse(nullptr, arguments.c_str(), nullptr, nullptr, nullptr);
        GVariant* const reply = g_dbus_connection_call_sync(
            bus_, name.c_str(), path, interface, method.c_str(), given, nullptr,
            G_DBUS_CALL_FLAGS_NONE, patience, nullptr, nullptr);
        if (given != nullptr) {
            g_variant_unref(given);
        }
        if (reply == nullptr) {
            return std::nullopt;
        }
        char* const printed = g_variant_print(reply, FALSE);
        std::string text = printed;
        g_free(printed);
        g_variant_unref(reply);
        return text;
    }

    GDBusConnection* bus_;
    std::vector<std::string> items_{};
    int tooEarly_ = 0;
};

} // namespace quorvel::testing

#pragma once

#include <gio/gio.h>

#include <functional>
#include <string>
#include <vector>

namespace quorvel {

/// The menu of a status item, as `com.canonical.dbusmenu` defines it: one list that never changes.
/// Without it, some trays don't show the item.
class StatusMenu {
public:
    struct Item {
        std::string label{};
        std::function<void()> chosen{};
    };

    static constexpr const char* path = "/StatusNotifierItem/Menu";

    /// Exports the menu on that bus while the object exists.
    StatusMenu(GDBusConnection* bus, std::vector<Item> items);
    StatusMenu(const StatusMenu&) = delete;
    StatusMenu& operator=(const StatusMenu&) = delete;
    ~StatusMenu();

private:
    static void called(GDBusConnection* bus, const char* sender, const char* path,
                       const char* interface, const char* method, GVariant* arguments,
                       GDBusMethodInvocation* invocation, gpointer self);
    static GVariant* property(GDBusConnection* bus, const char* sender, const char* path,
                              const char* interface, const char* name, GError** error,
                              gpointer self);

    [[nodiscard]] GVariant* propertiesOf(int id) const;
    [[nodiscard]] GVariant* layoutOf(int id, bool withItems) const;
    [[nodiscard]] GVariant* answer(const std::string& method, GVariant* arguments) const;
    [[nodiscard]] bool has(int id) const;
    [[nodiscard]] GVariant* groupProperties(GVariant* arguments) const;
    [[nodiscard]] GVariant* propertyOf(GVariant* arguments) const;
    void handle(GVariant* event) const;

    GDBusConnection* bus_;
    std::vector<Item> items_;
    guint registration_ = 0;
};

} // namespace quorvel

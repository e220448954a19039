#pragma once

#include "Platform/statusitem/StatusMenu_linux.h"

#include <gio/gio.h>

#include <functional>
#include <memory>
#include <string>

namespace quorvel {

/// What a status item is and does.
struct StatusItemOptions {
    std::string id{};    ///< always the same for the same clone
    std::string title{}; ///< any text; shown without what is unsafe in it
    std::string icon{};  ///< a `statusIconName`
    /// The user wants to see the window; with the desktop's activation token, or an empty one.
    std::function<void(const std::string& token)> show{};
    std::function<void()> quit{};
};

/// Returns the name in the icon theme for a clone whose menu entry has the icon `entryIcon`; empty
/// for none.
[[nodiscard]] std::string statusIconName(const std::string& entryIcon, bool isSymbolic);

/// An icon in the tray, with a menu, as `org.kde.StatusNotifierItem` defines it, while the object
/// exists. Appears as soon as there is a tray, even one that starts later or restarts.
class StatusItem {
public:
    StatusItem(GDBusConnection* bus, StatusItemOptions options);
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;
    ~StatusItem();

    /// Shows a short text, such as a number of messages, with the icon; empty for none.
    void setLabel(const std::string& label);

private:
    static void nameAcquired(GDBusConnection* bus, const char* name, gpointer self);
    static void trayAppeared(GDBusConnection* bus, const char* name, const char* owner,
                             gpointer self);
    static void called(GDBusConnection* bus, const char* sender, const char* path,
                       const char* interface, const char* method, GVariant* arguments,
                       GDBusMethodInvocation* invocation, gpointer self);
    static GVariant* property(GDBusConnection* bus, const char* sender, const char* path,
                              const char* interface, const char* name, GError** error,
                              gpointer self);

    void show();
    [[nodiscard]] std::string title() const;
    void emit(const char* signal, GVariant* arguments) const;

    GDBusConnection* bus_;
    StatusItemOptions options_;
    std::string name_; ///< on the bus
    std::string label_{};
    std::string token_{}; ///< for the click that follows
    StatusMenu menu_;
    guint registration_ = 0;
    guint ownership_ = 0;
    guint watch_ = 0;
};

} // namespace quorvel

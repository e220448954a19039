#pragma once

#include <gio/gio.h>

#include <memory>

namespace quorvel {

struct VariantReleaser {
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
/// A reference to a value.
using VariantRef = std::unique_ptr<GVariant, VariantReleaser>;

/// Exports an object with the one interface that `description`, an introspection document, has.
/// Returns its registration; 0 if the path is taken.
[[nodiscard]] inline guint exportObject(GDBusConnection* bus, const char* path,
                                        const char* description,
                                        const GDBusInterfaceVTable& handlers, gpointer self) {
    GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(description, nullptr);
    const guint registration = g_dbus_connection_register_object(bus, path, *node->interfaces,
                                                                 &handlers, self, nullptr, nullptr);
    g_dbus_node_info_unref(node);
    return registration;
}

} // namespace quorvel

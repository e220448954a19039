#include "Platform/statusitem/StatusMenu_linux.h"

#include "Platform/statusitem/ExportedObject_linux.h"

#include <string_view>

namespace quorvel {
namespace {

constexpr const char* interfaceText = R"xml(<node><interface name="com.canonical.dbusmenu">
  <property name="Version" type="u" access="read"/>
  <property name="TextDirection" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="IconThemePath" type="as" access="read"/>
  <method name="GetLayout">
    <arg type="i" direction="in"/><arg type="i" direction="in"/><arg type="as" direction="in"/>
    <arg type="u" direction="out"/><arg type="(ia{sv}av)" direction="out"/>
  </method>
  <method name="GetGroupProperties">
    <arg type="ai" direction="in"/><arg type="as" direction="in"/>
    <arg type="a(ia{sv})" direction="out"/>
  </method>
  <method name="GetProperty">
    <arg type="i" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/>
  </method>
  <method name="Event">
    <arg type="i" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="in"/>
    <arg type="u" direction="in"/>
  </method>
  <method name="EventGroup">
    <arg type="a(isvu)" direction="in"/><arg type="ai" direction="out"/>
  </method>
  <method name="AboutToShow"><arg type="i" direction="in"/><arg type="b" direction="out"/></method>
  <method name="AboutToShowGroup">
    <arg type="ai" direction="in"/><arg type="ai" direction="out"/><arg type="ai" direction="out"/>
  </method>
  <signal name="LayoutUpdated"><arg type="u"/><arg type="i"/></signal>
</interface></node>)xml";

constexpr guint32 revision = 1; // of a menu that stays as it is
constexpr int root = 0;

const StatusMenu& of(gpointer self) {
    return *static_cast<const StatusMenu*>(self);
}

} // namespace

StatusMenu::StatusMenu(GDBusConnection* bus, std::vector<Item> items)
    : bus_(bus),
      items_(std::move(items)) {
    static constexpr GDBusInterfaceVTable handlers{called, property, nullptr, {}};
    registration_ = exportObject(bus, path, interfaceText, handlers, this);
}

StatusMenu::~StatusMenu() {
    g_dbus_connection_unregister_object(bus_, registration_);
}

bool StatusMenu::has(int id) const {
    return id >= root && id <= static_cast<int>(items_.size());
}

GVariant* StatusMenu::propertiesOf(int id) const {
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE_VARDICT);
    if (id == root) {
        g_variant_builder_add(&properties, "{sv}", "children-display",
                              g_variant_new_string("submenu"));
    } else {
        const std::string& label = items_[static_cast<std::size_t>(id - 1)].label;
        g_variant_builder_add(&properties, "{sv}", "label", g_variant_new_string(label.c_str()));
    }
    return g_variant_builder_end(&properties);
}

GVariant* StatusMenu::layoutOf(int id, bool withItems) const {
    GVariantBuilder items;
    g_variant_builder_init(&items, G_VARIANT_TYPE("av"));
    if (id == root && withItems) {
        for (int item = 1; has(item); ++item) {
            g_variant_builder_add(&items, "v", layoutOf(item, false));
        }
    }
    return g_variant_new("(i@a{sv}av)", id, propertiesOf(id), &items);
}

// Of the items that are asked for, or all of them.
GVariant* StatusMenu::groupProperties(GVariant* arguments) const {
    GVariantBuilder all;
    g_variant_builder_init(&all, G_VARIANT_TYPE("a(ia{sv})"));
    const VariantRef asked(g_variant_get_child_value(arguments, 0));
    const bool isForAll = g_variant_n_children(asked.get()) == 0;
    for (int item = root; isForAll && has(item); ++item) {
        g_variant_builder_add(&all, "(i@a{sv})", item, propertiesOf(item));
    }
    for (gsize index = 0; index < g_variant_n_children(asked.get()); ++index) {
        int id = root;
        g_variant_get_child(asked.get(), index, "i", &id);
        if (has(id)) {
            g_variant_builder_add(&all, "(i@a{sv})", id, propertiesOf(id));
        }
    }
    return g_variant_new("(a(ia{sv}))", &all);
}

GVariant* StatusMenu::propertyOf(GVariant* arguments) const {
    int id = root;
    const char* name = nullptr;
    g_variant_get(arguments, "(i&s)", &id, &name);
    const VariantRef properties(has(id) ? g_variant_ref_sink(propertiesOf(id)) : nullptr);
    const VariantRef value(properties ? g_variant_lookup_value(properties.get(), name, nullptr)
                                      : nullptr);
    return value ? g_variant_new("(v)", value.get()) : nullptr;
}

void StatusMenu::handle(GVariant* event) const {
    int id = root;
    const char* kind = nullptr;
    g_variant_get(event, "(i&s@vu)", &id, &kind, nullptr, nullptr);
    if (std::string_view(kind) == "clicked" && id != root && has(id)) {
        items_[static_cast<std::size_t>(id - 1)].chosen();
    }
}

// Returns what a method replies; null if it was asked about what isn't there.
GVariant* StatusMenu::answer(const std::string& method, GVariant* arguments) const {
    if (method == "GetLayout") {
        int id = root;
        int depth = 0;
        g_variant_get(arguments, "(ii@as)", &id, &depth, nullptr);
        return has(id) ? g_variant_new("(u@(ia{sv}av))", revision, layoutOf(id, depth != 0))
                       : nullptr;
    }
    if (method == "GetGroupProperties") {
        return groupProperties(arguments);
    }
    if (method == "GetProperty") {
        return propertyOf(arguments);
    }
    if (method == "Event") {
        handle(arguments);
        return g_variant_new("()");
    }
    if (method == "EventGroup") {
        const VariantRef events(g_variant_get_child_value(arguments, 0));
        for (gsize index = 0; index < g_variant_n_children(events.get()); ++index) {
            handle(VariantRef(g_variant_get_child_value(events.get(), index)).get());
        }
        return g_variant_new("(ai)", nullptr);
    }
    return method == "AboutToShow" ? g_variant_new("(b)", FALSE)
                                   : g_variant_new("(aiai)", nullptr, nullptr);
}

void StatusMenu::called(GDBusConnection* /*bus*/, const char* /*sender*/, const char* /*path*/,
                        const char* /*interface*/, const char* method, GVariant* arguments,
                        GDBusMethodInvocation* invocation, gpointer self) {
    if (GVariant* const reply = of(self).answer(method, arguments)) {
        g_dbus_method_invocation_return_value(invocation, reply);
    } else {
        g_dbus_method_invocation_return_error_literal(invocation, G_DBUS_ERROR,
                                                      G_DBUS_ERROR_INVALID_ARGS,
                                                      "the menu has no such item or property");
    }
}

GVariant* StatusMenu::property(GDBusConnection* /*bus*/, const char* /*sender*/,
                               const char* /*path*/, const char* /*interface*/, const char* name,
                               GError** /*error*/, gpointer /*self*/) {
    constexpr guint32 version = 3;
    const std::string asked = name;
    if (asked == "Version") {
        return g_variant_new_uint32(version);
    }
    if (asked == "IconThemePath") {
        return g_variant_new_strv(nullptr, 0);
    }
    return g_variant_new_string(asked == "Status" ? "normal" : "ltr");
}

} // namespace quorvel

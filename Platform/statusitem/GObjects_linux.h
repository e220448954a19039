#pragma once

#include <glib-object.h>

#include <memory>
#include <string>

/// Ownership of GLib's objects and texts.
namespace quorvel {

struct ObjectReleaser {
    void operator()(gpointer object) const { g_object_unref(object); }
};
/// A reference to an object.
template<typename Type>
using ObjectRef = std::unique_ptr<Type, ObjectReleaser>;

/// Returns another reference to the object.
template<typename Type>
[[nodiscard]] ObjectRef<Type> keep(Type* object) {
    return ObjectRef<Type>(static_cast<Type*>(g_object_ref(object)));
}

/// Returns the text, empty for null.
[[nodiscard]] inline std::string textOf(const char* text) {
    return text == nullptr ? std::string() : std::string(text);
}

/// Returns the text and frees it.
[[nodiscard]] inline std::string takeText(char* text) {
    std::string result = textOf(text);
    g_free(text);
    return result;
}

} // namespace quorvel

#pragma once

#include <glib-object.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

/// What the toolkit's interface needs everywhere in the host.
namespace quorvel {

struct ObjectReleaser {
    void operator()(gpointer object) const { g_object_unref(object); }
};
/// A reference to an object of the toolkit.
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

/// Connects a function without captures to a signal.
template<typename Function>
void onSignal(gpointer object, const char* signal, Function function, gpointer data) {
    g_signal_connect(object, signal, G_CALLBACK(+function), data);
}

/// Connects a function with captures to a signal whose arguments don't matter.
inline void onEvent(gpointer object, const char* signal, std::function<void()> act) {
    GClosure* const closure = g_cclosure_new_swap(
        G_CALLBACK(+[](gpointer data) { (*static_cast<std::function<void()>*>(data))(); }),
        new std::function<void()>(std::move(act)),
        [](gpointer data, GClosure*) { delete static_cast<std::function<void()>*>(data); });
    g_signal_connect_closure(object, signal, closure, FALSE);
}

} // namespace quorvel

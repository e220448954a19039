#pragma once

#include "Platform/statusitem/GObjects_linux.h"

#include <functional>
#include <utility>

/// Connecting functions to the toolkit's signals.
namespace quorvel {

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

#pragma once

#include "Platform/desktop/GObjects_linux.h"

#include <utility>

/// What the toolkit's interface needs everywhere in the host.
namespace quorvel {

/// Connects a function without captures to a signal.
template<typename Function>
void onSignal(gpointer object, const char* signal, Function function, gpointer data) {
    g_signal_connect(object, signal, G_CALLBACK(+function), data);
}

} // namespace quorvel

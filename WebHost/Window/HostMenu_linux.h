#pragma once

#include <gtk/gtk.h>

namespace quorvel {

/// Returns the button with the menu of a host's window, whose actions begin with "win.".
[[nodiscard]] GtkWidget* newHostMenuButton(bool isMainWindow);

/// Adds the shortcuts of those actions to the window.
void addHostShortcuts(GtkWidget* window);

/// Returns a button for one of them, with an icon.
[[nodiscard]] GtkWidget* newHostButton(const char* icon, const char* tooltip, const char* action);

} // namespace quorvel

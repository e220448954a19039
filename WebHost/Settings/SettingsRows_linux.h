#pragma once

#include "WebHost/Settings/SettingsEditor.h"

#include <gtk/gtk.h>

#include <functional>
#include <vector>

/// What a panel of settings is made of.
namespace quorvel {

/// Names a control without a text, for assistive technology.
void nameControl(GtkWidget* control, const char* name);

/// Adds a section with that heading to the box, and returns it.
GtkWidget* addSection(GtkWidget* page, const char* heading);

/// Adds a control with its name, whose mnemonic leads to it, and returns the control.
GtkWidget* addSetting(GtkWidget* section, const char* name, GtkWidget* control);

/// Adds a small text.
GtkWidget* addHint(GtkWidget* section, const char* text);

/// Returns a field; `entered` is called when the user has finished entering something.
[[nodiscard]] GtkWidget* newField(const char* placeholder, std::function<void()> entered);

/// Returns a choice of texts; the last one is null. `chosen` is called with each choice.
[[nodiscard]] GtkWidget* newChoice(const char* const* texts, unsigned first,
                                   std::function<void()> chosen);

/// Replaces what is in the list by the rows, or by the text `ifEmpty` if there are none.
void fillList(GtkWidget* list, const std::vector<RemovableRow>& rows, const char* ifEmpty);

} // namespace quorvel

#pragma once

#include "WebHost/Settings/SettingsEditor.h"

#import <AppKit/AppKit.h>

#include <functional>
#include <string>
#include <vector>

/// What a panel of settings is made of.
namespace quorvel {

/// Has a function called when the user uses a control, which keeps it.
void onAction(NSControl* _Nonnull control, std::function<void()> used);

/// Returns a column of views.
[[nodiscard]] NSStackView* _Nonnull newColumn(NSArray<NSView*>* _Nonnull views);

/// Returns a column that has this heading.
[[nodiscard]] NSStackView* _Nonnull newSection(NSString* _Nonnull heading);

/// Adds a control with its name to a section.
void addSetting(NSStackView* _Nonnull section, NSString* _Nonnull name, NSView* _Nonnull control);

/// Returns a text of several lines.
[[nodiscard]] NSTextField* _Nonnull newHint(const std::string& text);

/// Returns a field; `entered` is called when the user has finished entering something.
[[nodiscard]] NSTextField* _Nonnull newField(NSString* _Nonnull placeholder,
                                             std::function<void()> entered);

/// Returns a choice of texts; `chosen` is called with each choice.
[[nodiscard]] NSPopUpButton* _Nonnull newChoice(NSArray<NSString*>* _Nonnull texts,
                                                std::function<void()> chosen);

/// Returns a button; `clicked` is called with each click.
[[nodiscard]] NSButton* _Nonnull newButton(NSString* _Nonnull title, std::function<void()> clicked);

/// Replaces what is in the list by the rows, or by the text `ifEmpty` if there are none.
void fillList(NSStackView* _Nonnull list, const std::vector<RemovableRow>& rows,
              const char* _Nonnull ifEmpty);

/// Adds a button to a section.
void addButton(NSStackView* _Nonnull section, NSButton* _Nonnull button);

/// Makes a window scroll through a column.
void scrollThrough(NSWindow* _Nonnull window, NSStackView* _Nonnull column);

} // namespace quorvel

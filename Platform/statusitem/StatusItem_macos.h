#pragma once

#import <AppKit/AppKit.h>

#include <functional>

/// A clone's icon in the menu bar, with a menu. Lasts as long as this object.
@interface QuorvelStatusItem : NSObject
/// `isTemplate`: the icon is drawn in one color. `show` is called when the user wants to see the
/// clone, and `quit` when it is to end.
- (nonnull instancetype)initWithName:(nonnull NSString*)name
                                icon:(nonnull NSImage*)icon
                            template:(BOOL)isTemplate
                                show:(std::function<void()>)show
                                quit:(std::function<void()>)quit;
/// Shows a short text, such as a number of messages, with the icon; empty for none.
- (void)showLabel:(nonnull NSString*)label;
@end

#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <optional>
#include <string>

/// The clone's icon in the menu bar, with its count. Lasts as long as this object.
@interface QuorvelStatusItem : NSObject
/// `isTemplate`: the icon is drawn in one color. `clicked` is called when the user clicks on it.
- (nonnull instancetype)initWithName:(nonnull NSString*)name
                            template:(BOOL)isTemplate
                             clicked:(std::function<void()>)clicked;
- (void)showLabel:(const std::optional<std::string>&)label;
@end

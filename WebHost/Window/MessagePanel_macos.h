#pragma once

#import <AppKit/AppKit.h>

#include <string>

/// Shows messages for a few seconds on top of a window, also of one that fills the screen.
@interface QuorvelMessagePanel : NSObject
- (void)showText:(const std::string&)text over:(nonnull NSWindow*)window;
- (void)hide;
@end

#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <string>

/// Offers something about the page that is shown.
@interface QuorvelOfferBar : NSObject
@property(nonatomic, readonly, nonnull) NSView* view;
/// Shows the text and the button until `hide`.
- (void)showText:(const std::string&)text
          button:(const std::string&)button
          chosen:(std::function<void()>)chosen;
- (void)hide;
@end

#pragma once

#import <AppKit/AppKit.h>
#import <WebKit/WebKit.h>

#include <string>

/// The row above a page: where it comes from, and how to get elsewhere.
@interface QuorvelHostHeader : NSObject
/// The window's commands go to `target`.
- (nonnull instancetype)initWithPage:(nonnull WKWebView*)page
                              target:(nonnull id)target
                             hasHome:(BOOL)hasHome;
@property(nonatomic, readonly, nonnull) NSView* view;
- (void)showTitle:(const std::string&)title;
/// Shows a text of `shownHost`.
- (void)showHost:(const std::string&)host;
/// Enables the buttons that do something now.
- (void)update;
@end

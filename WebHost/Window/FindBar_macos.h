#pragma once

#import <AppKit/AppKit.h>
#import <WebKit/WebKit.h>

/// Finds text in a page.
@interface QuorvelFindBar : NSObject
- (nonnull instancetype)initWithPage:(nonnull WKWebView*)page;
@property(nonatomic, readonly, nonnull) NSView* view;
- (void)show;
- (void)hide;
/// Finds the next place of the entered text.
- (void)findForward:(BOOL)isForward;
@end

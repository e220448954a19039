#pragma once

#include "WebHost/Questions/HostQuestion.h"
#include "WebHost/Window/WindowState.h"

#import <AppKit/AppKit.h>
#import <WebKit/WebKit.h>

#include <cstdint>
#include <functional>
#include <string>

namespace quorvel {

/// What a window can't do by itself.
struct WindowActions {
    std::function<void()> home{};           ///< absent in pop-ups
    std::function<void()> closeRequested{}; ///< by the user; the window stays until `end`
};

} // namespace quorvel

/// One window with a page: its header, its bars and its commands. Knows nothing of the clone.
@interface QuorvelWindow : NSObject
- (nonnull instancetype)initWithPage:(nonnull WKWebView*)page
                                name:(nonnull NSString*)name
                             actions:(quorvel::WindowActions)actions
                               state:(const quorvel::WindowState&)state;
@property(nonatomic, readonly, nonnull) NSWindow* window;
/// See `QuorvelGestureCount`.
@property(nonatomic, readonly) std::uint64_t gestures;
@property(nonatomic, readonly) BOOL hasRecentGesture;

/// Shows the window and brings it to the front, as far as the system allows it.
- (void)present;
- (void)setTitle:(const std::string&)windowTitle pageTitle:(const std::string&)pageTitle;
/// Shows the host of that address, and updates the buttons of the header. `isExcepted` as in
/// `shownHost`.
- (void)updateLocation:(const std::string&)address isExcepted:(BOOL)isExcepted;
/// Returns NO if too many questions wait, and this one is not urgent.
- (BOOL)ask:(quorvel::HostQuestion)question;
/// Offers something about the page, until `hideOffer`.
- (void)showOffer:(const std::string&)text
           button:(const std::string&)button
           chosen:(std::function<void()>)chosen;
- (void)hideOffer;
/// Shows what is being downloaded; `cancelled` may be empty. An empty text hides the bar.
- (void)showDownloads:(const std::string&)text cancelled:(std::function<void()>)cancelled;
/// Shows a message for a few seconds.
- (void)showMessage:(const std::string&)text;
- (void)zoomTo:(int)percent;
/// Returns the state, with the page's address.
- (quorvel::WindowState)state;
/// Answers all questions and dialogs as if the user had closed them, and closes the window.
- (void)end;
@end

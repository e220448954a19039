#pragma once

#import <AppKit/AppKit.h>

/// The menus' commands that windows carry out, and below those of the whole clone. They go to the
/// first object in the key window's responder chain that has them.
@protocol QuorvelWindowCommands
- (void)goHome:(nullable id)sender;
- (void)showFindBar:(nullable id)sender;
- (void)findNext:(nullable id)sender;
- (void)findPrevious:(nullable id)sender;
- (void)zoomPageIn:(nullable id)sender;
- (void)zoomPageOut:(nullable id)sender;
- (void)zoomPageToActualSize:(nullable id)sender;
- (void)toggleHeader:(nullable id)sender;
- (void)printPage:(nullable id)sender;
- (void)copyLink:(nullable id)sender;
@end

@protocol QuorvelCloneCommands
- (void)showSiteSettings:(nullable id)sender;
@end

namespace quorvel {

/// Returns the menu bar of the clone with that name.
[[nodiscard]] NSMenu* _Nonnull newMenuBar(NSString* _Nonnull name);

} // namespace quorvel

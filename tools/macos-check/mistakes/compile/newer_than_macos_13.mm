// expected: 'activateLately' is only available on macOS 14.0 or newer
#import <AppKit/AppKit.h>

@interface NSWorkspace (Lately)
- (void)activateLately SINCE_MACOS(14.0);
@end

void activate() { [NSWorkspace.sharedWorkspace activateLately]; }

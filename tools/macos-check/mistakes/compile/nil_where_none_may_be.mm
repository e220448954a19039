// expected: null passed to a callee that requires a non-null argument
#import <AppKit/AppKit.h>

void reveal() { [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:nil]; }

// expected: declares the selector 'activateFileViewerSelectingUrls:'
#import <AppKit/AppKit.h>

void reveal(NSURL* item) {
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingUrls:@[ item ]];
}

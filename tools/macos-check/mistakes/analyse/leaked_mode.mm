// expected: Potential leak of an object stored into 'mode'
#import <AppKit/AppKit.h>

bool isTurning() {
    CFRunLoopMode mode = CFRunLoopCopyCurrentMode(CFRunLoopGetMain());
    return mode != nullptr;
}

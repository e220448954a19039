// expected: nothing keeps this delegate: host
#import <AppKit/AppKit.h>

void run(NSApplication* application, id<NSApplicationDelegate> (^make)(void)) {
    const id<NSApplicationDelegate> host = make();
    application.delegate = host;
    [application run];
}

#include "WebHost/Pages/GestureCount_macos.h"

#include "WebHost/Pages/FloodCaps.h"

@implementation QuorvelGestureCount {
    NSView* __weak _view;
    id _monitor;
    quorvel::FloodClock::time_point _last;
}

- (instancetype)initWithView:(NSView*)view {
    self = [super init];
    if (self != nil) {
        _view = view;
        __weak QuorvelGestureCount* const weakSelf = self;
        _monitor = [NSEvent
            addLocalMonitorForEventsMatchingMask:NSEventMaskLeftMouseDown |
                                                 NSEventMaskRightMouseDown |
                                                 NSEventMaskOtherMouseDown | NSEventMaskKeyDown
                                         handler:^NSEvent*(NSEvent* event) {
                                           [weakSelf counted:event];
                                           return event;
                                         }];
    }
    return self;
}

- (void)dealloc {
    [self stop];
}

- (void)counted:(NSEvent*)event {
    if (event.window != nil && event.window == _view.window) {
        ++_count;
        _last = quorvel::FloodClock::now();
    }
}

- (BOOL)isRecent {
    constexpr std::chrono::seconds span{1};
    return _count > 0 && quorvel::FloodClock::now() - _last < span;
}

- (void)stop {
    if (_monitor != nil) {
        [NSEvent removeMonitor:_monitor];
        _monitor = nil;
    }
}

@end
